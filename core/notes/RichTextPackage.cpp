#include "core/notes/RichTextPackage.h"

#include "core/base/Files.h"
#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"

#include <fstream>
#include <functional>
#include <set>
#include <system_error>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

constexpr const char* textName = "TXT.rtf";
/// What a note can't sensibly have more of; a larger file is left where it is.
constexpr std::uintmax_t largestFile = 256u << 20;

fs::path textPath(const fs::path& package) {
    std::error_code ignored;
    return fs::is_directory(package, ignored) ? package / textName : package;
}

/// Nothing for what isn't a plain file of a sensible size: a link may lead anywhere, a pipe never ends.
std::optional<std::string> readPlainFile(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error))) return std::nullopt;
    if (fs::file_size(path, error) > largestFile || error) return std::nullopt;
    try {
        return readFile(path);
    } catch (const std::system_error&) {
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
        if (auto bytes = readPlainFile(path / name)) text->attachments.emplace(name, *std::move(bytes));
    }
    return text;
}

bool RichTextPackage::isReadable(const fs::path& path) {
    const fs::path file = textPath(path);
    std::error_code ignored;
    if (!fs::is_regular_file(fs::symlink_status(file, ignored))) return false;
    std::string beginning(64, '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    beginning.resize(static_cast<std::size_t>(stream.gcount()));
    return RtfReader::read(beginning).has_value();
}

void RichTextPackage::write(const fs::path& path, const RichText& text) {
    FolderContents files = {{textName, RtfWriter::write(text)}};
    for (const std::string& name : shownAttachments(text)) {
        // A name that isn't safe was never given by addAttachment().
        if (RichText::attachmentName(name) != name) continue;
        const auto found = text.attachments.find(name);
        std::error_code ignored;
        if (found != text.attachments.end()) {
            files.emplace(name, found->second);
        } else if (fs::is_regular_file(fs::symlink_status(path / name, ignored))) {
            files.emplace(name, readFile(path / name));
        }
    }
    replaceFolder(path, files);
}

} // namespace lumnara
