#include "catalog/file_types.h"

#include <algorithm>
#include <iterator>

#include "base/phrases.h"

namespace kxrestore::catalog {

namespace {

using enum FileKind;
using enum Phrase;

struct KnownType {
  std::string_view extension;
  Phrase description;
  FileKind kind;
};

// Sorted by extension.
constexpr KnownType kTypes[] = {
    {"3gp", kTypeVideoClip, kVideo},
    {"7z", kType7zArchive, kArchives},
    {"aac", kTypeAudioFile, kMusic},
    {"ai", kTypeIllustration, kPictures},
    {"aif", kTypeAudioFile, kMusic},
    {"asf", kTypeVideoClip, kVideo},
    {"avi", kTypeVideoClip, kVideo},
    {"bat", kTypeBatchFile, kPrograms},
    {"bmp", kTypeBitmapImage, kPictures},
    {"bz2", kTypeBzip2Archive, kArchives},
    {"cab", kTypeCabinetFile, kArchives},
    {"cmd", kTypeCommandScript, kPrograms},
    {"com", kTypeProgram, kPrograms},
    {"csv", kTypeCommaSeparatedValues, kDocuments},
    {"dbx", kTypeMailFolder, kMail},
    {"dll", kTypeProgramLibrary, kPrograms},
    {"doc", kTypeTextDocument, kDocuments},
    {"docm", kTypeTextDocumentWithMacros, kDocuments},
    {"docx", kTypeTextDocument, kDocuments},
    {"dot", kTypeDocumentTemplate, kDocuments},
    {"eml", kTypeMailMessage, kMail},
    {"exe", kTypeProgram, kPrograms},
    {"flac", kTypeAudioFile, kMusic},
    {"flv", kTypeVideoClip, kVideo},
    {"gif", kTypeGIFImage, kPictures},
    {"gz", kTypeGzipArchive, kArchives},
    {"heic", kTypePhoto, kPictures},
    {"htm", kTypeWebPage, kDocuments},
    {"html", kTypeWebPage, kDocuments},
    {"ico", kTypeIcon, kPictures},
    {"iso", kTypeDiscImage, kArchives},
    {"jar", kTypeProgramArchive, kPrograms},
    {"jpeg", kTypeJPEGImage, kPictures},
    {"jpg", kTypeJPEGImage, kPictures},
    {"js", kTypeScript, kPrograms},
    {"kxexag", kTypeMailServerItem, kMail},
    {"m4a", kTypeAudioFile, kMusic},
    {"m4v", kTypeVideoClip, kVideo},
    {"mbox", kTypeMailFolder, kMail},
    {"mbx", kTypeMailFolder, kMail},
    {"mid", kTypeMIDIMusic, kMusic},
    {"mkv", kTypeVideoClip, kVideo},
    {"mov", kTypeVideoClip, kVideo},
    {"mp3", kTypeMP3Music, kMusic},
    {"mp4", kTypeVideoClip, kVideo},
    {"mpeg", kTypeVideoClip, kVideo},
    {"mpg", kTypeVideoClip, kVideo},
    {"msg", kTypeMailMessage, kMail},
    {"msi", kTypeInstallationPackage, kPrograms},
    {"odp", kTypePresentation, kDocuments},
    {"ods", kTypeSpreadsheet, kDocuments},
    {"odt", kTypeTextDocument, kDocuments},
    {"ogg", kTypeAudioFile, kMusic},
    {"ost", kTypeMailStore, kMail},
    {"pdf", kTypePDFDocument, kDocuments},
    {"png", kTypePNGImage, kPictures},
    {"pps", kTypeSlideShow, kDocuments},
    {"ppt", kTypePresentation, kDocuments},
    {"pptx", kTypePresentation, kDocuments},
    {"ps1", kTypeScript, kPrograms},
    {"psd", kTypeLayeredImage, kPictures},
    {"pst", kTypeMailStore, kMail},
    {"rar", kTypeRARArchive, kArchives},
    {"rtf", kTypeRichTextDocument, kDocuments},
    {"svg", kTypeVectorImage, kPictures},
    {"sys", kTypeSystemDriver, kPrograms},
    {"tar", kTypeTarArchive, kArchives},
    {"tgz", kTypeTarArchive, kArchives},
    {"tif", kTypeTIFFImage, kPictures},
    {"tiff", kTypeTIFFImage, kPictures},
    {"txt", kTypePlainText, kDocuments},
    {"vbs", kTypeScript, kPrograms},
    {"vsd", kTypeDrawing, kDocuments},
    {"wav", kTypeAudioFile, kMusic},
    {"webm", kTypeVideoClip, kVideo},
    {"webp", kTypeWebPImage, kPictures},
    {"wma", kTypeAudioFile, kMusic},
    {"wmf", kTypeVectorImage, kPictures},
    {"wmv", kTypeVideoClip, kVideo},
    {"wpd", kTypeTextDocument, kDocuments},
    {"xls", kTypeSpreadsheet, kDocuments},
    {"xlsm", kTypeSpreadsheetWithMacros, kDocuments},
    {"xlsx", kTypeSpreadsheet, kDocuments},
    {"xml", kTypeXMLDocument, kDocuments},
    {"xz", kTypeXzArchive, kArchives},
    {"zip", kTypeZIPArchive, kArchives},
};

static_assert(std::ranges::is_sorted(kTypes, {}, &KnownType::extension));

constexpr Phrase kKindNames[] = {kKindDocuments, kKindPictures, kKindMusic,   kKindVideo,
                                 kKindMail,      kKindArchives, kKindPrograms};

}  // namespace

std::string_view KindName(FileKind kind) {
  return kind == kOther ? std::string_view() : Say(kKindNames[static_cast<std::size_t>(kind)]);
}

FileType FindFileType(std::string_view extension) {
  const auto* const found = std::ranges::lower_bound(kTypes, extension, {}, &KnownType::extension);
  if (found == std::end(kTypes) || found->extension != extension) return {extension, {}, kOther};
  return {found->extension, Say(found->description), found->kind};
}

}  // namespace kxrestore::catalog
