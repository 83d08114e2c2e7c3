// How the operations of the services' tables are carried out.
#pragma once

#include "VorSpiTypes.h"

namespace VorNode {

/// Thrown within an operation: it ends with this code.
struct Refusal {
    KelReturnT code;
};

/// Refuses null pointers.
template <class... PointersT>
void requirePointers(const PointersT*... pointers) {
    if ((... || !pointers)) {
        throw Refusal{VorReturnFailed};
    }
}

/// Carries the operation out and contains every exception. 0, the refusal's code, or -1 for another
/// exception.
template <class WorkT>
KelReturnT carryOut(WorkT&& work) noexcept {
    try {
        work();
        return VorReturnOk;
    } catch (const Refusal& refusal) {
        return refusal.code;
    } catch (...) {
        return VorReturnFailed;
    }
}

/// The function of a table that calls `member` on the one object of its service, as `carryOut` does.
template <auto member>
struct TableFunction;

template <class ServiceT, class... ArgumentsT, void (ServiceT::*member)(ArgumentsT...)>
struct TableFunction<member> {
    static KelReturnT call(ArgumentsT... arguments) noexcept {
        return carryOut([&] { (ServiceT::current().*member)(arguments...); });
    }
};

template <class ServiceT, class... ArgumentsT, void (ServiceT::*member)(ArgumentsT...) const>
struct TableFunction<member> {
    static KelReturnT call(ArgumentsT... arguments) noexcept {
        return carryOut([&] { (ServiceT::current().*member)(arguments...); });
    }
};

/// Fills a service's table: `operation<&EventRouter::addSubscription>`.
template <auto member>
inline constexpr auto operation = &TableFunction<member>::call;

}  // namespace VorNode
