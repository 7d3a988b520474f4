#pragma once

#include <exception>
#include <string>

namespace lumnara {

/// A failure that a user may meet: a typed value that carries its full sentence. Derived types hold
/// their case and payload and compare by both.
class Failure : public std::exception {
public:
    explicit Failure(std::string sentence) : sentence_(std::move(sentence)) {}

    /// The sentence that a surface shows as it stands.
    const std::string& sentence() const noexcept { return sentence_; }
    const char* what() const noexcept override { return sentence_.c_str(); }

private:
    std::string sentence_;
};

/// The sentence of a Failure, and the description of any other exception; empty for none.
std::string sentenceOf(const std::exception_ptr& error);

} // namespace lumnara
