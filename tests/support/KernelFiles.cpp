#include "KernelFiles.h"

#include <sstream>

#include "Golden.h"

namespace VorTest {

std::map<std::string, std::string> kernelTexts(const std::string& className) {
    std::istringstream file(golden("kernel/" + className + ".txt"));
    std::map<std::string, std::string> texts;
    std::string* text = nullptr;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("== "))
            text = &texts[line.substr(3)];
        else
            *text += line + "\n";
    return texts;
}

void writeKernelFiles(const std::string& className, const std::string& moment,
                      const std::filesystem::path& root) {
    for (const auto& [heading, text] : kernelTexts(className))
        if (heading.starts_with(moment + " ")) {
            const std::filesystem::path file = root / heading.substr(moment.size() + 1);
            std::filesystem::create_directories(file.parent_path());
            writeFile(file, text);
        }
}

}  // namespace VorTest
