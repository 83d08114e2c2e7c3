// The classes that the kernel's counters are measured in. A new class is a file with the table of its
// types and its reader, and an entry here and in the list.
#pragma once

#include <span>

#include "counters/KernelSample.h"

namespace VorNode {

extern const KernelClass processorClass;         // each CPU that is online
extern const KernelClass memoryClass;            // the memory of the machine
extern const KernelClass networkInterfaceClass;  // each network interface
extern const KernelClass diskClass;              // each disk and partition that was ever used
extern const KernelClass loadClass;              // the load of the machine
extern const KernelClass pressureClass;          // stalls for want of CPU, memory and I/O
extern const KernelClass softirqsClass;          // the softirqs served by each CPU

/// All of them, constant for the life of the process.
std::span<const KernelClass* const> kernelClasses();

}  // namespace VorNode
