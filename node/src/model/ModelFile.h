#pragma once

#include <memory>
#include <string>

#include "model/Model.h"

namespace VorNode {

/// The model that the XML file describes; the caller owns it. In its texts and dns `%H` stands for the host's
/// name, `%%` for `%`. Throws `InputError` with every fault that was found: the file, the line, the fault and
/// what to write instead. Called at start-up, on the application's thread.
std::unique_ptr<Model> loadModel(const std::string& path);
std::unique_ptr<Model> loadModel(const std::string& path, const std::string& hostName);

}  // namespace VorNode
