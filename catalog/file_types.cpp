#include "catalog/file_types.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace kxrestore::catalog {

namespace {

using enum FileKind;

// In the order of the extensions.
constexpr FileType kTypes[] = {
    {"3gp", "Video clip", kVideo},
    {"7z", "7z archive", kArchives},
    {"aac", "Audio file", kMusic},
    {"ai", "Illustration", kPictures},
    {"aif", "Audio file", kMusic},
    {"asf", "Video clip", kVideo},
    {"avi", "Video clip", kVideo},
    {"bat", "Batch file", kPrograms},
    {"bmp", "Bitmap image", kPictures},
    {"bz2", "bzip2 archive", kArchives},
    {"cab", "Cabinet file", kArchives},
    {"cmd", "Command script", kPrograms},
    {"com", "Program", kPrograms},
    {"csv", "Comma-separated values", kDocuments},
    {"dbx", "Mail folder", kMail},
    {"dll", "Program library", kPrograms},
    {"doc", "Text document", kDocuments},
    {"docm", "Text document with macros", kDocuments},
    {"docx", "Text document", kDocuments},
    {"dot", "Document template", kDocuments},
    {"eml", "Mail message", kMail},
    {"exe", "Program", kPrograms},
    {"flac", "Audio file", kMusic},
    {"flv", "Video clip", kVideo},
    {"gif", "GIF image", kPictures},
    {"gz", "gzip archive", kArchives},
    {"heic", "Photo", kPictures},
    {"htm", "Web page", kDocuments},
    {"html", "Web page", kDocuments},
    {"ico", "Icon", kPictures},
    {"iso", "Disc image", kArchives},
    {"jar", "Program archive", kPrograms},
    {"jpeg", "JPEG image", kPictures},
    {"jpg", "JPEG image", kPictures},
    {"js", "Script", kPrograms},
    {"kxexag", "Mail server item", kMail},
    {"m4a", "Audio file", kMusic},
    {"m4v", "Video clip", kVideo},
    {"mbox", "Mail folder", kMail},
    {"mbx", "Mail folder", kMail},
    {"mid", "MIDI music", kMusic},
    {"mkv", "Video clip", kVideo},
    {"mov", "Video clip", kVideo},
    {"mp3", "MP3 music", kMusic},
    {"mp4", "Video clip", kVideo},
    {"mpeg", "Video clip", kVideo},
    {"mpg", "Video clip", kVideo},
    {"msg", "Mail message", kMail},
    {"msi", "Installation package", kPrograms},
    {"odp", "Presentation", kDocuments},
    {"ods", "Spreadsheet", kDocuments},
    {"odt", "Text document", kDocuments},
    {"ogg", "Audio file", kMusic},
    {"ost", "Mail store", kMail},
    {"pdf", "PDF document", kDocuments},
    {"png", "PNG image", kPictures},
    {"pps", "Slide show", kDocuments},
    {"ppt", "Presentation", kDocuments},
    {"pptx", "Presentation", kDocuments},
    {"ps1", "Script", kPrograms},
    {"psd", "Layered image", kPictures},
    {"pst", "Mail store", kMail},
    {"rar", "RAR archive", kArchives},
    {"rtf", "Rich text document", kDocuments},
    {"svg", "Vector image", kPictures},
    {"sys", "System driver", kPrograms},
    {"tar", "tar archive", kArchives},
    {"tgz", "tar archive", kArchives},
    {"tif", "TIFF image", kPictures},
    {"tiff", "TIFF image", kPictures},
    {"txt", "Plain text", kDocuments},
    {"vbs", "Script", kPrograms},
    {"vsd", "Drawing", kDocuments},
    {"wav", "Audio file", kMusic},
    {"webm", "Video clip", kVideo},
    {"webp", "WebP image", kPictures},
    {"wma", "Audio file", kMusic},
    {"wmf", "Vector image", kPictures},
    {"wmv", "Video clip", kVideo},
    {"wpd", "Text document", kDocuments},
    {"xls", "Spreadsheet", kDocuments},
    {"xlsm", "Spreadsheet with macros", kDocuments},
    {"xlsx", "Spreadsheet", kDocuments},
    {"xml", "XML document", kDocuments},
    {"xz", "xz archive", kArchives},
    {"zip", "ZIP archive", kArchives},
};

constexpr bool Before(const FileType& left, const FileType& right) {
  return left.extension < right.extension;
}
static_assert(std::is_sorted(std::begin(kTypes), std::end(kTypes), Before));

constexpr std::array<std::string_view, kFileKinds> kKindNames{"Documents", "Pictures", "Music",    "Video",
                                                              "Mail",      "Archives", "Programs", ""};

}  // namespace

std::string_view KindName(FileKind kind) {
  return kKindNames[static_cast<std::size_t>(kind)];
}

FileType FindFileType(std::string_view extension) {
  const FileType wanted{extension, {}, kOther};
  const auto* const found = std::lower_bound(std::begin(kTypes), std::end(kTypes), wanted, Before);
  return found != std::end(kTypes) && found->extension == extension ? *found : wanted;
}

}  // namespace kxrestore::catalog
