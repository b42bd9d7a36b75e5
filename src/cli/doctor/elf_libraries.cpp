#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

#include "cli/doctor/bundle_files.h"
#include "cli/doctor/needed_libraries.h"
#include "system/open_regular_file.h"

namespace cli::doctor {
namespace {

namespace fs = std::filesystem;

/// The loader's settings files can include each other, also in a circle.
constexpr int kDeepestInclude = 8;

/// Adds the folders that one of the loader's settings files lists. Its `include` takes a path with at most
/// one * in the name.
void add_listed_folders(const fs::path& settings, int depth, std::vector<std::string>& folders) {
    std::ifstream in(settings);
    for (std::string line; depth < kDeepestInclude && std::getline(in, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string word;
        words >> word;
        if (word != "include") {
            if (!word.empty()) {
                folders.push_back(word);
            }
            continue;
        }
        words >> word;
        const fs::path pattern = settings.parent_path() / word;
        const std::string name = pattern.filename().string();
        const std::size_t star = name.find('*');
        if (star == std::string::npos) {
            add_listed_folders(pattern, depth + 1, folders);
            continue;
        }
        std::error_code failure;
        for (fs::directory_iterator entry(pattern.parent_path(), failure);
             !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
            const std::string found = entry->path().filename().string();
            if (found.compare(0, star, name, 0, star) == 0 && has_ending(found, name.substr(star + 1))) {
                add_listed_folders(entry->path(), depth + 1, folders);
            }
        }
    }
}

const std::vector<std::string>& system_folders() {
    static const std::vector<std::string> kFolders = [] {
        std::vector<std::string> folders;
        add_listed_folders("/etc/ld.so.conf", 0, folders);
        for (const char* usual : {"/lib", "/usr/lib", "/lib64", "/usr/lib64"}) {
            folders.emplace_back(usual);
        }
        return folders;
    }();
    return kFolders;
}

/// Whether this system has an ELF loader, for this processor or any other: they are all named ld-*.
bool is_elf_system() {
    std::error_code failure;
    for (const std::string& folder : system_folders()) {
        for (fs::directory_iterator entry(folder, failure); !failure && entry != fs::directory_iterator();
             entry.increment(failure)) {
            if (entry->path().filename().string().compare(0, 3, "ld-") == 0) {
                return true;
            }
        }
        failure.clear();
    }
    return false;
}

void add_path_list(const std::string& list, std::vector<std::string>& folders) {
    std::istringstream in(list);
    for (std::string folder; std::getline(in, folder, ':');) {
        folders.push_back(folder.empty() ? "." : folder);
    }
}

/// Replaces $ORIGIN by the folder of the file itself.
std::string with_origin(std::string folder, const std::string& origin) {
    for (const char* const word : {"$ORIGIN", "${ORIGIN}"}) {
        if (const std::size_t at = folder.find(word); at != std::string::npos) {
            folder.replace(at, std::string_view(word).size(), origin);
        }
    }
    return folder;
}

bool is_library_for(const binary_file::BinaryImage& image, const std::string& path) {
    const os::InputFile in = os::open_input_file(path);
    if (in == nullptr) {
        return false;
    }
    std::array<char, 64> begin{};
    // The beginning is enough for word size and processor. The reader reports the rest as damage, which is
    // ignored.
    const std::string_view bytes(begin.data(), std::fread(begin.data(), 1, begin.size(), in.get()));
    if (!binary_file::is_elf_file(bytes)) {
        return false;
    }
    const binary_file::BinaryImage other = binary_file::read_elf_file(binary_file::ByteView(bytes));
    return other.processor == image.processor && other.is_64_bit == image.is_64_bit;
}

}  // namespace

bool has_elf_library(const std::string& binary, const binary_file::BinaryImage& image,
                     std::string_view name) {
    static const bool kElfSystem = is_elf_system();
    if (!kElfSystem) {
        return true;
    }
    if (name.find('/') != std::string_view::npos) {
        return is_library_for(image, std::string(name));
    }
    std::vector<std::string> folders;
    for (const std::string_view folder : image.search_paths) {
        folders.push_back(with_origin(std::string(folder.empty() ? "." : folder), folder_of(binary)));
    }
    if (const char* const set = std::getenv("LD_LIBRARY_PATH"); set != nullptr) {
        add_path_list(set, folders);
    }
    folders.insert(folders.end(), system_folders().begin(), system_folders().end());
    for (const std::string& folder : folders) {
        if (is_library_for(image, folder + '/' + std::string(name))) {
            return true;
        }
    }
    return false;
}

}  // namespace cli::doctor
