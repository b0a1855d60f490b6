#pragma once

#include <string>
#include <string_view>

namespace zel::platform {

// The folder of the accessory bus: `chosen`, else $ZEL_ACCESSORIES, else $XDG_RUNTIME_DIR/zel/accessories, else
// /tmp/zel-accessories-UID. An empty variable counts as unset, and so does a relative $XDG_RUNTIME_DIR.
// Thread: any thread that does not race with a change of the environment.
std::string accessoryFolderPath(const std::string& chosen);

// Makes the folder, and the one above it, with mode 0700 where they are missing, and checks that nobody but this user
// can plug there: the folder is this user's and neither group nor others may write it. A symbolic link is followed when
// this user made it, since a stranger's link could be turned elsewhere at any time.
// Errors: false; `error` names the folder, the fault and the remedy.
bool prepareAccessoryFolder(const std::string& path, std::string& error);

// Makes the folder and its missing parents with mode 0700.
// Errors: the error's number, else 0.
int makeFolders(std::string_view path);

}  // namespace zel::platform
