#pragma once

#include <filesystem>

namespace VorNode {

/// Where the node's parts are, in the build tree as in an installation: told from the place of the program.
struct InstallPaths {
    std::filesystem::path library;
    std::filesystem::path configuration;
    std::filesystem::path model;
    /// The folder of `vorea`.
    std::filesystem::path commands;

    static InstallPaths ofThisProgram();
};

}  // namespace VorNode
