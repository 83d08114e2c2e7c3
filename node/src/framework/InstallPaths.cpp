#include "framework/InstallPaths.h"

namespace VorNode {

namespace fs = std::filesystem;

InstallPaths InstallPaths::ofThisProgram() {
    const fs::path prefix = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
    const fs::path data = prefix / VOR_NODE_DATADIR;
    return {prefix / VOR_NODE_LIBDIR / "libvor_pm.so", data / "vor-node.xml", data / "model.xml",
            prefix / VOR_NODE_LIBEXECDIR};
}

}  // namespace VorNode
