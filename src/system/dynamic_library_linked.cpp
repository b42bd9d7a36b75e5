#include <utility>

#include "system/linked_library.h"

namespace os {
namespace {

using Functions = std::map<std::string, DynamicLibrary::Function>;

Functions& linked_functions() {
    static Functions functions;
    return functions;
}

class LinkedLibrary final : public DynamicLibrary {
  public:
    [[nodiscard]] Function function(const char* name) const override {
        const auto found = linked_functions().find(name);
        return found == linked_functions().end() ? nullptr : found->second;
    }
};

}  // namespace

void set_linked_library(Functions functions) {
    linked_functions() = std::move(functions);
}

std::unique_ptr<DynamicLibrary> DynamicLibrary::open(const std::filesystem::path& /*path*/,
                                                     std::string& error) {
    if (linked_functions().empty()) {
        error = "this program cannot load libraries and contains none";
        return nullptr;
    }
    return std::make_unique<LinkedLibrary>();
}

}  // namespace os
