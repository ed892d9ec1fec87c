#pragma once
// The check for a newer version of the program: a background thread posts
// to the version server named in the settings and reads the released
// versions from its XML answer. With no server set, no check runs.

#include <QByteArray>
#include <QObject>
#include <QThread>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/coresubsystem.h"
#include "util/dynamicobject.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::core {

// The settings that hold the server's address; empty means no check.
constexpr std::int32_t kVersionServerSetting = 130;

class UpdateReciever : public QThread, public util::DynamicObject {
 public:
  UpdateReciever(std::string url, int timeoutMs) : url_(std::move(url)), timeoutMs_(timeoutMs) {}
  // Only this thread writes these until it has finished.
  QByteArray answer;
  bool reached = false;

 protected:
  void run() override;

 private:
  std::string url_;
  int timeoutMs_;
};

class UpdateManager : public QObject, public CoreSubSystem {
 public:
  // One released version.
  class Entry : public util::MessageNode {
   public:
    Entry() : util::MessageNode("updateentry") {}
    Entry(const Entry& other);
    // False for a malformed entry, which is dropped.
    bool Read(const util::xml::Element& element);

    std::int32_t version = 0;
    std::string releaseDate;
    std::vector<std::pair<std::string, std::string>> changelog;  // title, text
    std::vector<std::string> affects;
    std::vector<std::pair<std::string, std::string>> downloads;  // platform, address
  };

  enum class Outcome { kNotChecked, kUpToDate, kNewer, kNoAnswer, kBadAnswer };

  // `currentVersion` in the integer form: major x 1000 + minor x 100 + patch.
  UpdateManager(CoreImplementation* core, std::int32_t currentVersion);
  ~UpdateManager() override;

  // Starts a check against the server; false when none is set or one runs.
  bool Check(const std::string& server, int timeoutMs = 10000);
  bool IsChecking() const { return receiver != nullptr; }
  Outcome GetOutcome() const { return outcome_; }
  // The line the update window shows for the outcome.
  std::string StatusText() const;
  // "1.2.34" for 1234.
  static std::string VersionText(std::int32_t version);
  // Reads an answer; false for an "error" element or what isn't an answer.
  static bool ReadAnswer(const QByteArray& answer, std::vector<Entry>& into);

  // Called on the main thread when a check has ended.
  std::function<void()> onChecked;

  UpdateReciever* receiver = nullptr;
  std::vector<Entry> entries;
  bool checked = false;

 private:
  void onFinish();

  std::int32_t currentVersion_;
  Outcome outcome_ = Outcome::kNotChecked;
};

}  // namespace vuk::rgw::core
