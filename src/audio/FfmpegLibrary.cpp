#include "FfmpegLibrary.h"

#include <dlfcn.h>
#include <memory>
#include <string>

namespace {

// The shared libraries by the major versions the headers name, so the
// functions found match the declarations compiled against.
std::string soname(const char* name, int major) {
    return std::string("lib") + name + ".so." + std::to_string(major);
}

std::unique_ptr<FfmpegLibrary> load() {
    const std::string names[] = {soname("avutil", LIBAVUTIL_VERSION_MAJOR),
                                 soname("avcodec", LIBAVCODEC_VERSION_MAJOR),
                                 soname("avformat", LIBAVFORMAT_VERSION_MAJOR),
                                 soname("swresample", LIBSWRESAMPLE_VERSION_MAJOR)};
    void* handles[std::size(names)] = {};
    for (size_t i = 0; i < std::size(names); ++i) {
        // Kept loaded for the life of the process, as FFmpeg expects.
        handles[i] = ::dlopen(names[i].c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handles[i])
            return nullptr;
    }
    auto find = [&handles](const char* symbol) -> void* {
        for (void* handle : handles)
            if (void* address = ::dlsym(handle, symbol))
                return address;
        return nullptr;
    };
    auto library = std::make_unique<FfmpegLibrary>();
#define KELVARIS_FFMPEG_BIND(name)                                                                 \
    library->name = reinterpret_cast<decltype(library->name)>(find(#name));                        \
    if (!library->name)                                                                            \
        return nullptr;
    KELVARIS_FFMPEG_FUNCTIONS(KELVARIS_FFMPEG_BIND)
#undef KELVARIS_FFMPEG_BIND
    return library;
}

} // namespace

const FfmpegLibrary* FfmpegLibrary::Get() {
    static const std::unique_ptr<FfmpegLibrary> library = load();
    return library.get();
}
