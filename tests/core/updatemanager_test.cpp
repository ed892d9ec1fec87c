#include "core/updatemanager.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace vuk::rgw::core {
namespace {

// A version server on loopback that answers each request with a fixed body,
// or never answers at all.
class VersionServer {
 public:
  explicit VersionServer(QByteArray body, bool answer = true) : body_(std::move(body)), answer_(answer) {
    server_.listen(QHostAddress::LocalHost, 0);
    QObject::connect(&server_, &QTcpServer::newConnection, [this] {
      QTcpSocket* socket = server_.nextPendingConnection();
      QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
        request += socket->readAll();
        if (!answer_ || !request.contains("\r\n\r\n")) return;
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: " +
                      QByteArray::number(body_.size()) + "\r\nConnection: close\r\n\r\n" + body_);
        socket->disconnectFromHost();
      });
    });
  }
  std::string Address() const { return "http://127.0.0.1:" + std::to_string(server_.serverPort()); }
  QByteArray request;

 private:
  QTcpServer server_;
  QByteArray body_;
  bool answer_;
};

class VersionCheck : public testing::Test {
 protected:
  // Runs a check to its end, or fails after a few seconds.
  void CheckAgainst(const std::string& address, int timeoutMs = 3000) {
    manager.onChecked = [] { QCoreApplication::quit(); };
    ASSERT_TRUE(manager.Check(address, timeoutMs));
    EXPECT_FALSE(manager.Check(address));  // one at a time
    QTimer::singleShot(8000, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    EXPECT_TRUE(manager.checked);
  }

  int argc = 1;
  char name[12] = "tests_core";
  char* argv[2] = {name, nullptr};
  QCoreApplication application{argc, argv};
  UpdateManager manager{nullptr, 1200};
};

TEST_F(VersionCheck, NewerVersionsAreFound) {
  VersionServer server(
      "<versions><entry version=\"1234\"><releasedate>2026-11-01</releasedate>"
      "<changelog title=\"Cars\">Better grip</changelog><changelog/><affects>4Wheeler</affects><affects/>"
      "<url platform=\"linux\">http://example.invalid/rgw.tar.gz</url></entry>"
      "<entry version=\"x\"/><entry version=\"1100\"/></versions>");
  CheckAgainst(server.Address());
  EXPECT_NE(server.request.indexOf("POST /cgi-bin/rgwversion?platform=linux&currentversion=1200"), -1)
      << server.request.toStdString();
  ASSERT_EQ(manager.entries.size(), 2u);  // the malformed one is dropped
  const UpdateManager::Entry& newest = manager.entries[0];
  EXPECT_EQ(UpdateManager::VersionText(newest.version), "1.2.34");
  EXPECT_EQ(newest.changelog.size(), 1u);
  EXPECT_EQ(newest.affects, std::vector<std::string>{"4Wheeler"});
  ASSERT_EQ(newest.downloads.size(), 1u);
  EXPECT_EQ(manager.GetOutcome(), UpdateManager::Outcome::kNewer);
  EXPECT_EQ(manager.StatusText(), "Click here to update to the latest version of Quoll Rigworks.");
}

TEST_F(VersionCheck, AnErrorElementOrGarbageGivesNoEntries) {
  for (const char* body : {"<error>busy</error>", "%%% not xml at all"}) {
    VersionServer server(body);
    CheckAgainst(server.Address());
    EXPECT_TRUE(manager.entries.empty());
    EXPECT_EQ(manager.GetOutcome(), UpdateManager::Outcome::kBadAnswer);
    EXPECT_EQ(manager.StatusText(), "Unable to connect to version server. Click here to check for updates manually");
  }
}

TEST_F(VersionCheck, AServerThatNeverAnswersTimesOut) {
  VersionServer server("", false);
  CheckAgainst(server.Address(), 300);
  EXPECT_EQ(manager.GetOutcome(), UpdateManager::Outcome::kNoAnswer);
  EXPECT_NE(manager.StatusText().find("Are you behind a firewall?"), std::string::npos);
}

TEST_F(VersionCheck, UpToDateAndNoServer) {
  VersionServer server("<versions><entry version=\"1200\"/></versions>");
  CheckAgainst(server.Address());
  EXPECT_EQ(manager.StatusText(), "You are up to date");
  UpdateManager idle(nullptr, 1200);
  EXPECT_FALSE(idle.Check(""));
  EXPECT_FALSE(idle.checked);
}

}  // namespace
}  // namespace vuk::rgw::core
