#include "core/notes/RichTextPackage.h"

#include "core/base/Files.h"
#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"

#include <set>
#include <system_error>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

constexpr const char* textName = "TXT.rtf";
/// What a note can't sensibly have more of; a larger file is left where it is.
constexpr std::uintmax_t largestFile = 256u << 20;

/// Throws std::system_error when the disk doesn't say.
fs::path textPath(const fs::path& package) {
    return fs::is_directory(package) ? package / textName : package;
}

/// Nothing for what isn't a plain file of a sensible size: a link may lead anywhere, a pipe never ends.
/// Throws std::system_error when the disk fails.
std::optional<std::string> readPlainFile(const fs::path& path) {
    if (!fs::is_regular_file(fs::symlink_status(path))) return std::nullopt;
    if (fs::file_size(path) > largestFile) return std::nullopt;
    return readFile(path);
}

std::optional<std::string> readAttachment(const fs::path& path) {
    try {
        return readPlainFile(path);
    } catch (const std::system_error&) { // it stays where it is
        return std::nullopt;
    }
}

std::set<std::string> shownAttachments(const RichText& text) {
    std::set<std::string> names;
    for (const TextParagraph& paragraph : text.paragraphs)
        for (const TextRun& run : paragraph.runs)
            if (run.attachment) names.insert(run.attachment->name);
    return names;
}

} // namespace

std::optional<RichText> RichTextPackage::read(const fs::path& path) {
    const fs::path file = textPath(path);
    const auto rtf = readPlainFile(file);
    auto text = rtf ? RtfReader::read(*rtf) : std::nullopt;
    if (!text || file == path) return text;
    for (const std::string& name : shownAttachments(*text)) {
        if (text->attachments.contains(name)) continue;
        if (auto bytes = readAttachment(path / name)) text->attachments.emplace(name, *std::move(bytes));
    }
    return text;
}

bool RichTextPackage::isReadable(const fs::path& path) {
    constexpr std::size_t tellingLength = 64;
    const auto rtf = readPlainFile(textPath(path));
    return rtf && RtfReader::read(std::string_view(*rtf).substr(0, tellingLength)).has_value();
}

void RichTextPackage::write(const fs::path& path, const RichText& text) {
    FolderContents files = {{textName, RtfWriter::write(text)}};
    for (const std::string& name : shownAttachments(text)) {
        // A name that isn't safe was never given by addAttachment().
        if (RichText::attachmentName(name) != name) continue;
        const auto found = text.attachments.find(name);
        if (found != text.attachments.end()) {
            files.emplace(name, found->second);
        } else if (fs::is_regular_file(fs::symlink_status(path / name))) {
            files.emplace(name, readFile(path / name));
        }
    }
    replaceFolder(path, files);
}

} // namespace lumnara
