// What vornex-sim says about itself. Help and manual page are made from the same sections.
#ifndef VORNEX_SIM_OPTIONS_HELP_H
#define VORNEX_SIM_OPTIONS_HELP_H

#include <string>

namespace CLI {
class App;
}

namespace vornex::sim {

extern const char* const Purpose;

// Everything below the options.
std::string helpFooter();
// In man(7) format.
std::string manPage(const CLI::App& app);
// A bash script that completes options, and files behind those that take one.
std::string bashCompletion(const CLI::App& app);

}  // namespace vornex::sim

#endif
