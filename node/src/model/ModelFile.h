#pragma once

#include <memory>
#include <string>

#include "model/Model.h"

namespace VorNode {

/// The model that the XML file describes; the caller owns it. Throws `InputError` naming the file, the line,
/// the fault and what to write instead. Called at start-up, on the application's thread.
std::unique_ptr<Model> loadModel(const std::string& path);

}  // namespace VorNode
