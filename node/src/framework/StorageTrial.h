#pragma once

#include <filesystem>

namespace VorNode {

/// Tries what the component will do with the root's folders: write in each, and rename from the temporary
/// folder into the report folder. Leaves nothing behind. Throws `InputError` naming the folder, the reason
/// and the remedy when that does not work. What is missing is the component's to create.
void tryStorage(const std::filesystem::path& root);

}  // namespace VorNode
