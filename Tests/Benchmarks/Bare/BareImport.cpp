// What an import cannot do without, and nothing besides: the peer that ./dev bench import measures the import against.
//
//   zelto_bare_import LIST FOLDER [thumbnails]
//
// LIST names files, each ended by a null character. Two threads take them in turn. Each file is copied into a fresh
// folder below FOLDER, in one pass that also digests it (SHA-1), and the copy is decoded with libvips, in this process,
// to at most 512 pixels a side in sRGB. With `thumbnails` a file of more than 256 KB gets that written beside it: a
// JPEG of quality 85 for a JPEG, a PNG of the import's settings for the rest. The file system is flushed once, at the
// end.
//
// No store, no item, no properties, colours, dates or attributes; no check of what is read; no other process, so that a
// damaged file may end all. Prints how many files it read; a file that cannot be read ends the program.

#include <openssl/evp.h>
#include <vips/vips.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <strings.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr int thumbnailSide = 512;
constexpr size_t blockSize = 1 << 20;
constexpr off_t cheapToShow = 262144;
constexpr int threadCount = 2;

[[noreturn]] void fail(const std::string &path)
{
    std::perror(path.c_str());
    std::fprintf(stderr, "%s", vips_error_buffer());
    std::exit(EXIT_FAILURE);
}

std::vector<std::string> listedFiles(const char *path)
{
    std::ifstream list(path, std::ios::binary);
    std::vector<std::string> files;
    for (std::string file; std::getline(list, file, '\0');) {
        files.push_back(file);
    }
    return files;
}

// The size of the file; its digest goes the way of one that nobody asks for.
off_t copyAndDigest(const std::string &from, const std::string &to)
{
    thread_local const std::unique_ptr<char[]> buffer(new char[blockSize]);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestInit_ex(digest.get(), EVP_sha1(), nullptr);
    const int source = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int target = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    off_t size = 0;
    for (;;) {
        const ssize_t got = ::read(source, buffer.get(), blockSize);
        if (got == 0) {
            break;
        }
        if (got < 0 || ::write(target, buffer.get(), size_t(got)) != got) {
            fail(from);
        }
        EVP_DigestUpdate(digest.get(), buffer.get(), size_t(got));
        size += got;
    }
    unsigned char bytes[EVP_MAX_MD_SIZE];
    EVP_DigestFinal_ex(digest.get(), bytes, nullptr);
    ::close(source);
    if (::close(target) != 0) {
        fail(to);
    }
    return size;
}

bool isJPEG(const std::string &path)
{
    const std::string ending = path.substr(path.find_last_of('.') + 1);
    return ::strcasecmp(ending.c_str(), "jpg") == 0 || ::strcasecmp(ending.c_str(), "jpeg") == 0;
}

int writeThumbnail(VipsImage *picture, const std::string &copy)
{
    if (isJPEG(copy)) {
        return vips_jpegsave(picture, (copy + "_thumb.jpg").c_str(), "Q", 85, "strip", TRUE, nullptr);
    }
    return vips_pngsave(picture, (copy + "_thumb.png").c_str(), "compression", 2, "filter", VIPS_FOREIGN_PNG_FILTER_SUB,
                        "strip", TRUE, nullptr);
}

struct Unref
{
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using Picture = std::unique_ptr<VipsImage, Unref>;

// Null when that fails. To ask for sRGB of every picture, with a profile of its own or without, would take libvips ten
// times as long for a small one.
Picture decodedPicture(const std::string &path)
{
    VipsImage *next = nullptr;
    if (vips_thumbnail(path.c_str(), &next, thumbnailSide, "height", thumbnailSide, "size", VIPS_SIZE_DOWN, nullptr)) {
        return nullptr;
    }
    Picture picture(next);
    if (vips_image_get_typeof(picture.get(), VIPS_META_ICC_NAME) != 0) {
        if (vips_icc_transform(picture.get(), &next, "srgb", "embedded", TRUE, nullptr)) {
            return nullptr;
        }
        picture.reset(next);
    }
    Picture pixels(vips_image_new_memory());
    return vips_image_write(picture.get(), pixels.get()) == 0 ? std::move(pixels) : nullptr;
}

void importFile(const std::string &path, const std::string &folder, bool writesThumbnails)
{
    const std::string copy = folder + path.substr(path.find_last_of('/'));
    if (::mkdir(folder.c_str(), 0777) != 0) {
        fail(folder);
    }
    const off_t size = copyAndDigest(path, copy);
    const Picture picture(decodedPicture(copy));
    if (!picture || (writesThumbnails && size > cheapToShow && writeThumbnail(picture.get(), copy) != 0)) {
        fail(copy);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const bool writesThumbnails = argc == 4 && std::string_view(argv[3]) == "thumbnails";
    if ((argc != 3 && !writesThumbnails) || VIPS_INIT(argv[0])) {
        return EXIT_FAILURE;
    }
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const std::vector<std::string> files = listedFiles(argv[1]);
    const std::string folder = argv[2];
    std::atomic<size_t> next = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (size_t file = next++; file < files.size(); file = next++) {
                importFile(files[file], folder + '/' + std::to_string(file), writesThumbnails);
            }
            vips_thread_shutdown();
        });
    }
    threads.clear();
    const int place = ::open(argv[2], O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (place < 0 || ::syncfs(place) != 0) {
        fail(folder);
    }
    std::printf("%zu\n", files.size());
    return EXIT_SUCCESS;
}
