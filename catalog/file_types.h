// What is known of file types: what they are called and which kind of file they are.
#pragma once

#include <cstddef>
#include <string_view>

namespace kxrestore::catalog {

enum class FileKind { kDocuments, kPictures, kMusic, kVideo, kMail, kArchives, kPrograms, kOther };
inline constexpr std::size_t kFileKinds = 8;

// As the name of a group; empty for kOther.
std::string_view KindName(FileKind kind);

struct FileType {
  std::string_view extension;  // lower case, without the point
  std::string_view description;
  FileKind kind = FileKind::kOther;
};

// The type of that extension, in lower case; one of kind kOther without a description when it is not known.
FileType FindFileType(std::string_view extension);

}  // namespace kxrestore::catalog
