#include "core/updatemanager.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <algorithm>

namespace vuk::rgw::core {

namespace {

constexpr char kPlatform[] = "linux";

}  // namespace

void UpdateReciever::run() {
  // The network objects live in this thread, with an event loop of its own.
  QNetworkAccessManager network;
  QNetworkRequest request(QUrl(QString::fromStdString(url_)));
  request.setHeader(QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded");
  QNetworkReply* reply = network.post(request, QByteArray());
  QEventLoop loop;
  QTimer timeout;
  timeout.setSingleShot(true);
  QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
  QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
  timeout.start(timeoutMs_);
  loop.exec();
  if (reply->isFinished() && reply->error() == QNetworkReply::NoError) {
    answer = reply->readAll();
    reached = true;
  } else {
    reply->abort();
  }
  delete reply;
}

UpdateManager::Entry::Entry(const Entry& other)
    : util::MessageNode("updateentry"),
      version(other.version),
      releaseDate(other.releaseDate),
      changelog(other.changelog),
      affects(other.affects),
      downloads(other.downloads) {}

bool UpdateManager::Entry::Read(const util::xml::Element& element) {
  const std::string number = element.GetAttribute("version");
  if (number.empty() || !std::all_of(number.begin(), number.end(), ::isdigit) || number.size() > 9) return false;
  version = std::stoi(number);
  releaseDate = element.GetChild("releasedate").GetText();
  for (std::size_t i = 0, n = element.CountChildren("changelog"); i < n; ++i) {
    const util::xml::Element& change = element.GetChild("changelog", i);
    if (!change.GetAttribute("title").empty() || !change.GetText().empty()) {
      changelog.emplace_back(change.GetAttribute("title"), change.GetText());
    }
  }
  for (std::size_t i = 0, n = element.CountChildren("affects"); i < n; ++i) {
    if (!element.GetChild("affects", i).GetText().empty()) affects.push_back(element.GetChild("affects", i).GetText());
  }
  for (std::size_t i = 0, n = element.CountChildren("url"); i < n; ++i) {
    const util::xml::Element& url = element.GetChild("url", i);
    if (!url.GetAttribute("platform").empty() || !url.GetText().empty()) {
      downloads.emplace_back(url.GetAttribute("platform"), url.GetText());
    }
  }
  return true;
}

UpdateManager::UpdateManager(CoreImplementation* core, std::int32_t currentVersion)
    : CoreSubSystem(core), currentVersion_(currentVersion) {}

UpdateManager::~UpdateManager() {
  if (receiver) {
    receiver->wait();
    delete receiver;
  }
}

std::string UpdateManager::VersionText(std::int32_t version) {
  return std::to_string(version / 1000) + "." + std::to_string((version % 1000) / 100) + "." +
         std::to_string(version % 100);
}

bool UpdateManager::ReadAnswer(const QByteArray& answer, std::vector<Entry>& into) {
  util::xml::Element root;
  if (root.ParseText(answer.toStdString()) != util::xml::kParsed || root.name == "error") return false;
  if (!root.GetChild("error").IsEmpty()) return false;
  for (std::size_t i = 0, n = root.CountChildren("entry"); i < n; ++i) {
    Entry entry;
    if (entry.Read(root.GetChild("entry", i))) into.push_back(entry);
  }
  return true;
}

bool UpdateManager::Check(const std::string& server, int timeoutMs) {
  if (server.empty() || receiver) return false;
  const std::string url = server + "/cgi-bin/rgwversion?platform=" + kPlatform +
                          "&currentversion=" + std::to_string(currentVersion_);
  receiver = new UpdateReciever(url, timeoutMs);
  // The end of the thread is taken on the main thread.
  connect(receiver, &QThread::finished, this, [this] { onFinish(); }, Qt::QueuedConnection);
  receiver->start();
  return true;
}

void UpdateManager::onFinish() {
  entries.clear();
  if (!receiver->reached) {
    outcome_ = Outcome::kNoAnswer;
  } else if (!ReadAnswer(receiver->answer, entries)) {
    outcome_ = Outcome::kBadAnswer;
  } else {
    const bool newer = std::any_of(entries.begin(), entries.end(),
                                   [this](const Entry& entry) { return entry.version > currentVersion_; });
    outcome_ = newer ? Outcome::kNewer : Outcome::kUpToDate;
  }
  delete receiver;
  receiver = nullptr;
  checked = true;
  if (onChecked) onChecked();
}

std::string UpdateManager::StatusText() const {
  switch (outcome_) {
    case Outcome::kUpToDate: return "You are up to date";
    case Outcome::kNewer: return "Click here to update to the latest version of Quoll Rigworks.";
    case Outcome::kNoAnswer:
      return "Unable to connect to version server. Are you behind a firewall? Click here to check for updates manually";
    case Outcome::kBadAnswer: return "Unable to connect to version server. Click here to check for updates manually";
    case Outcome::kNotChecked: return "";
  }
  return "";
}

}  // namespace vuk::rgw::core
