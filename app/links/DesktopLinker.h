#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/async/TaskFwd.h"
#include "core/base/Failure.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/model/PlatformWords.h"

#include <string>
#include <string_view>
#include <utility>

namespace lumnara {

/// What a gesture on the Board asks for.
struct LinkRequest {
    enum class Kind {
        create, ///< a new desktop on the other display, linked to this one
        with,   ///< this desktop and the one of that Space
        unlink, ///< an end of this desktop's link
    };

    static LinkRequest create(Desktop desktop) { return {Kind::create, std::move(desktop), {}}; }
    static LinkRequest with(Desktop desktop, std::string spaceKey) {
        return {Kind::with, std::move(desktop), std::move(spaceKey)};
    }
    static LinkRequest unlink(Desktop desktop) { return {Kind::unlink, std::move(desktop), {}}; }

    Kind kind;
    Desktop desktop;
    /// Of `with`.
    std::string spaceKey;

    bool operator==(const LinkRequest&) const = default;
};

/// Makes and dissolves links for the surfaces. Main thread.
class DesktopLinker {
public:
    /// Why a request came to nothing.
    class Failure : public FailureOf<Failure, std::string, std::string_view, std::string_view> {
    public:
        enum class Case {
            notFound,       ///< a desktop of the request isn't live any more
            sameDisplay,    ///< both desktops are on one display
            notLinked,      ///< there is no link to end
            noOtherDisplay, ///< there is none to make a desktop on
            cannotCreate,   ///< this system can't add desktops
            notIdentified,  ///< a desktop was added, but it can't be told which
        };
        static constexpr Sentence<Case> sentences[] = {
            {Case::notFound, "That desktop is not there any more."},
            {Case::sameDisplay,
             "Two desktops of one display can't be linked. Choose one on another display."},
            {Case::notLinked, "“{}” is not linked to another desktop."},
            {Case::noOtherDisplay, "There is no other display to link with."},
            {Case::cannotCreate,
             "Lumnara can't add a desktop here. Add one on the other display, then link the two."},
            {Case::notIdentified,
             "{1} added the desktop but Lumnara could not tell which one it is. Link it by hand from {2}."},
        };

        /// `name` is the desktop's, of notLinked.
        explicit Failure(Case which, const PlatformWords& words, std::string name = {})
            : FailureOf(which, std::move(name), words.system, words.linkingPlace) {}
    };

    /// Both outlive this object; `arranger` is null where desktops can't be added.
    DesktopLinker(DesktopCatalog& catalog, DesktopArranger* arranger, PlatformKind kind);

    /// Carries the request out and gives the text that the user is told. Throws Failure, or what the arranger
    /// failed with. This object has to stand until the task has ended.
    async::Task<std::string> carryOut(LinkRequest request);

private:
    async::Task<std::string> create(Desktop requested);
    std::string link(const Desktop& requested, const std::string& spaceKey);
    std::string unlink(const Desktop& requested);
    [[noreturn]] void fail(Failure::Case which, std::string name = {}) const;
    const Desktop& live(const std::string& spaceKey) const;

    DesktopCatalog& catalog_;
    DesktopArranger* const arranger_;
    const PlatformWords words_;
};

} // namespace lumnara
