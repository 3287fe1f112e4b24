// What an export of pictures cannot do without, and nothing besides: the peer that ./dev bench export measures against.
//
//   zelto_bare_export LIST FOLDER jpeg PERCENT
//   zelto_bare_export LIST FOLDER png SIDE
//
// LIST names files, each ended by a null character. Two threads take them in turn. Each picture is decoded with
// libvips, in this process, turned upright, brought to sRGB and scaled: to PERCENT of its sides, or so that it fits
// SIDE × SIDE. It is written into FOLDER as the encoder does by itself, without metadata, under its number in the list.
// The file system is flushed once, at the end.
//
// No library, no names, no tags; no check of what is read; no other process, so that a damaged file may end all. Prints
// how many files it wrote; a file that cannot be read or written ends the program.

#include <vips/vips.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int threadCount = 2;
constexpr int highestSide = 10'000'000;

struct Unref
{
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using Picture = std::unique_ptr<VipsImage, Unref>;

struct Task
{
    std::string folder;
    bool isJPEG;
    int number; // percent, or pixels a side
};

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

Picture scaled(const std::string &path, const Task &task)
{
    const Picture header(vips_image_new_from_file(path.c_str(), nullptr));
    if (!header) {
        fail(path);
    }
    int width = std::min(task.number, highestSide);
    int height = width;
    VipsSize size = VIPS_SIZE_DOWN;
    if (task.isJPEG) {
        const bool isTurned = vips_image_get_orientation_swap(header.get());
        width = std::max(1, (isTurned ? header->Ysize : header->Xsize) * task.number / 100);
        height = std::max(1, (isTurned ? header->Xsize : header->Ysize) * task.number / 100);
        size = VIPS_SIZE_FORCE;
    }
    const char *const profile = vips_image_get_typeof(header.get(), VIPS_META_ICC_NAME) != 0 ? "srgb" : nullptr;
    VipsImage *out = nullptr;
    if (vips_thumbnail(path.c_str(), &out, width, "height", height, "size", size, profile ? "export_profile" : nullptr,
                       profile, nullptr)) {
        fail(path);
    }
    const Picture picture(out);
    if (vips_colourspace(picture.get(), &out, VIPS_INTERPRETATION_sRGB, nullptr)) {
        fail(path);
    }
    return Picture(out);
}

void write(VipsImage *picture, const std::string &name, const Task &task)
{
    const std::string path = task.folder + '/' + name + (task.isJPEG ? ".jpg" : ".png");
    const int failed = task.isJPEG ? vips_jpegsave(picture, path.c_str(), "strip", TRUE, nullptr)
                                   : vips_pngsave(picture, path.c_str(), "strip", TRUE, nullptr);
    if (failed) {
        fail(path);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 5 || (std::strcmp(argv[3], "jpeg") != 0 && std::strcmp(argv[3], "png") != 0) || VIPS_INIT(argv[0])) {
        std::fprintf(stderr, "zelto_bare_export LIST FOLDER jpeg PERCENT | png SIDE\n");
        return EXIT_FAILURE;
    }
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const std::vector<std::string> files = listedFiles(argv[1]);
    const Task task{argv[2], std::strcmp(argv[3], "jpeg") == 0, std::max(1, std::atoi(argv[4]))};
    std::atomic<size_t> next = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (size_t at = next++; at < files.size(); at = next++) {
                write(scaled(files[at], task).get(), std::to_string(at), task);
            }
            vips_thread_shutdown();
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    const int folder = ::open(argv[2], O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0 || ::syncfs(folder) != 0) {
        fail(argv[2]);
    }
    ::close(folder);
    std::printf("%zu\n", files.size());
    return EXIT_SUCCESS;
}
