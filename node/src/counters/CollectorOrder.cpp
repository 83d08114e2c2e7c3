#include "counters/CollectorOrder.h"

#include <algorithm>
#include <string_view>

namespace VorNode {

namespace {

std::vector<std::string_view> typesOf(const MeasuredObject& object) {
    std::vector<std::string_view> types;
    for (const Measurement& measurement : object.values) {
        types.emplace_back(measurement.type);
    }
    return types;
}

}  // namespace

bool readsTheSameByPlace(const MeasuredClass& measured) {
    // A report lists types by name, and numbers them as they are met first.
    std::vector<std::string_view> list;
    for (const MeasuredObject& object : measured.objects) {
        std::vector<std::string_view> types = typesOf(object);
        if (list.empty()) {
            list = types;
        }
        std::sort(types.begin(), types.end());
        if (!types.empty() && types != list) {
            return false;
        }
    }
    return std::adjacent_find(list.begin(), list.end()) == list.end();
}

}  // namespace VorNode
