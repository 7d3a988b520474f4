#include "core/base/Failure.h"

namespace lumnara {

std::string sentenceOf(const std::exception_ptr& error) {
    if (!error) return {};
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "Unknown failure.";
    }
}

} // namespace lumnara
