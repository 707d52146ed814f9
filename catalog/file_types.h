// Known file types: descriptions and kinds by extension.
#pragma once

#include <cstddef>
#include <string_view>

namespace kxrestore::catalog {

enum class FileKind { kDocuments, kPictures, kMusic, kVideo, kMail, kArchives, kPrograms, kOther };
inline constexpr std::size_t kFileKinds = 8;

// The caption of the kind's group; empty for kOther.
std::string_view KindName(FileKind kind);

struct FileType {
  std::string_view extension;  // lower case, without the dot
  std::string_view description;
  FileKind kind = FileKind::kOther;
};

// Looks an extension up, in lower case; an unknown one has the kind kOther and no description.
FileType FindFileType(std::string_view extension);

}  // namespace kxrestore::catalog
