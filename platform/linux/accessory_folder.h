#pragma once

#include <string>
#include <string_view>

namespace zel::platform {

// The folder of the accessory bus: `chosen`, else $ZEL_ACCESSORIES, else $XDG_RUNTIME_DIR/zel/accessories, else
// /tmp/zel-accessories-UID. An empty variable counts as unset, and so does a relative $XDG_RUNTIME_DIR.
// Thread: any thread that does not race with a change of the environment.
std::string accessoryFolderPath(const std::string& chosen);

// Creates the folder and its parent with mode 0700 if missing, and checks that only this user can attach accessories:
// the folder belongs to this user and is not writable by group or others. A symbolic link is followed only if it
// belongs to this user, because another user's link could be redirected at any time.
// Errors: false; `error` names the folder, the fault and the remedy.
bool prepareAccessoryFolder(const std::string& path, std::string& error);

// The folder's path without links, "." and slashes at its end; as it is where there is no such folder.
std::string realFolder(const std::string& path);

// Creates the folder and its missing parents with mode 0700.
// Errors: errno, else 0.
int makeFolders(std::string_view path);

}  // namespace zel::platform
