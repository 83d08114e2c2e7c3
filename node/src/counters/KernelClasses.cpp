#include "counters/KernelClasses.h"

namespace VorNode {

std::span<const KernelClass* const> kernelClasses() {
    static constexpr const KernelClass* classes[]{&processorClass, &memoryClass, &networkInterfaceClass,
                                                  &diskClass,      &loadClass,   &pressureClass,
                                                  &softirqsClass};
    return classes;
}

}  // namespace VorNode
