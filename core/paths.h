#pragma once
// Where the system's folders are. The install root comes from the environment
// variable RIGWORKS_ROOT, else from the executable's location; the user's
// writable folder lies under the XDG data home.

#include <string>

namespace vuk::rgw::core {

// RIGWORKS_ROOT when set (even empty: no root), else the folder above the
// executable's own folder.
std::string GetInstallRoot();

// "data", "plugin", "doc", "prm", "" or "rgw" below the install root; any
// other kind gives the root itself. Without a root every answer is empty.
std::string GetPath(const std::string& kind);

// $XDG_DATA_HOME/rigworks, or ~/.local/share/rigworks.
std::string GetUserFolder();

// The folder below the user folder that holds the log.
std::string GetCoreDataFolder();

}  // namespace vuk::rgw::core
