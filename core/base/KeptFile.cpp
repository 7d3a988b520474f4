#include "core/base/KeptFile.h"

#include "core/base/Files.h"

#include <cerrno>
#include <cstdio>

namespace lumnara {

KeptFile::Reading KeptFile::load(const Decode& decode, Date now) {
    finishReplacement(path_);
    aside_.reset();
    Reading reading = read(decode);
    if (reading.found != Found::damage) return reading;
    try {
        aside_ = reading.aside = freeAsidePath(path_, now);
        moveDamageAside();
    } catch (const std::system_error& error) {
        reading.failure = error;
    }
    return reading;
}

KeptFile::Reading KeptFile::read(const Decode& decode) const {
    std::string text;
    try {
        text = readFile(path_);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) return {};
        return {.found = Found::unreadable, .failure = error};
    }
    try {
        decode(text);
    } catch (const Newer&) {
        return {.found = Found::newer};
    } catch (const std::exception& damage) {
        return {.found = Found::damage, .damage = damage.what()};
    }
    return {.found = Found::contents};
}

void KeptFile::replace(std::string_view contents) {
    if (aside_) moveDamageAside();
    replaceFile(path_, contents);
}

void KeptFile::moveDamageAside() {
    if (std::rename(path_.c_str(), aside_->c_str()) != 0 && errno != ENOENT)
        throw std::system_error(errno, std::generic_category(), "move aside " + path_.string());
    aside_.reset();
}

} // namespace lumnara
