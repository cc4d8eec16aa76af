#include "edge/payload/Metric_Names.h"

#include <stdexcept>
#include <unordered_map>

#include "text/Text.h"

namespace vornex::edge {

std::string metricName(const std::string& label) {
    std::string name;
    for (const char letter : label) {
        if (letter == ']') continue;
        name += letter == '[' || letter == '.' || letter == ',' ? '/' : letter;
    }
    return name;
}

std::vector<std::string> metricNames(const std::vector<std::string>& labels) {
    std::vector<std::string> names;
    std::unordered_map<std::string, const std::string*> taken;  // by the name in lower case
    for (const std::string& label : labels) {
        names.push_back(metricName(label));
        const auto [other, isNew] = taken.emplace(lowered(names.back()), &label);
        if (isNew) continue;
        throw std::invalid_argument("labels '" + *other->second + "' and '" + label + "' have one metric name: '" +
                                    metricName(*other->second) + "' and '" + names.back() +
                                    "' differ at most in upper and lower case");
    }
    return names;
}

}  // namespace vornex::edge
