// What the help class looks at on the machine: files, registry, versions. Each is a call or two of the
// system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zq {

using SearchHandle = std::uintptr_t;

// How a search for a file began.
struct FileSearchResult {
  enum class End { Found, NotFound, BadName };
  End end = End::NotFound;
  SearchHandle handle = 0;  // of a file that was found: open until it is closed
  std::string name;         // as the file system has it, without its folder
};

class HelpFileSearch {
 public:
  virtual ~HelpFileSearch() = default;
  virtual FileSearchResult FindFirst(const std::string& path) = 0;
  virtual void Close(SearchHandle handle) = 0;

  // The path with the long name of each of its parts; nothing where it can't be told, or is of `maxLength`
  // characters or more.
  virtual std::optional<std::string> LongPathName(const std::string& path, int maxLength) = 0;
};

using RegistryKey = std::uintptr_t;

// Rights to a key, and types of a value, with the values of the system.
inline constexpr std::uint32_t kKeyQueryValue = 0x1;
inline constexpr std::uint32_t kKeySetValue = 0x2;
inline constexpr std::uint32_t kKeyCreateSubKey = 0x4;
inline constexpr std::uint32_t kKeyAllAccess = 0xF003F;
inline constexpr std::uint32_t kTypeString = 1;
inline constexpr std::uint32_t kTypeExpandString = 2;

struct RegistryValueHead {
  std::string name;
  std::uint32_t type = 0;
  std::uint32_t bytes = 0;  // of the data, as the system counts them
};

// Each call gives nothing, or false, where the system refuses it.
class HelpRegistry {
 public:
  virtual ~HelpRegistry() = default;

  // `hive` is the number of a predefined key.
  virtual std::optional<RegistryKey> Open(std::uint32_t hive, const std::string& key,
                                          std::uint32_t access) = 0;
  virtual std::optional<RegistryKey> Create(std::uint32_t hive, const std::string& key,
                                            std::uint32_t access) = 0;
  virtual bool Close(RegistryKey key) = 0;

  // The values of a key in turn; names of up to `maxName` characters.
  virtual std::optional<RegistryValueHead> EnumValue(RegistryKey key, std::uint32_t index, int maxName) = 0;
  // Text as it is stored, with the null that usually ends it.
  virtual std::optional<std::string> QueryText(RegistryKey key, const std::string& name,
                                               std::uint32_t bytes) = 0;
  // A REG_SZ value: as many characters of `text` and its final null as `characters` says.
  virtual bool SetText(RegistryKey key, const std::string& name, const std::string& text,
                       std::size_t characters) = 0;
  virtual bool DeleteValue(RegistryKey key, const std::string& name) = 0;

  // The keys under a key in turn, and the default value of one of them.
  virtual std::optional<std::string> EnumKey(RegistryKey key, std::uint32_t index, int maxName) = 0;
  virtual std::optional<std::string> DefaultText(RegistryKey key, const std::string& subKey, int maxText) = 0;

  // `text` with the values of the environment variables in it; its null at the end stays. Nothing where
  // the result would be longer than `maxText`.
  virtual std::optional<std::string> Expand(const std::string& text, int maxText) = 0;
};

// The fixed part of a file's version information.
inline constexpr std::size_t kFixedVersionBytes = 52;

class FileVersions {
 public:
  virtual ~FileVersions() = default;

  // The size of a file's version information in bytes; 0 where it has none.
  virtual std::uint32_t InformationSize(const std::string& file) = 0;

  // Reads it into a buffer of `bufferBytes` and gives the fixed part, of kFixedVersionBytes; nothing where
  // that isn't in there.
  virtual std::optional<std::string> FixedInformation(const std::string& file, std::uint32_t bufferBytes) = 0;
};

// What the system says of its own version.
struct SystemVersion {
  std::uint32_t platformId = 0;
  std::uint32_t majorVersion = 0;
  std::uint32_t minorVersion = 0;
};

class SystemVersionSource {
 public:
  virtual ~SystemVersionSource() = default;
  // All zero where the system doesn't tell.
  virtual SystemVersion Version() = 0;
};

}  // namespace zq
