#include "FrontEnds.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <dlfcn.h>

namespace {

constexpr char kModuleName[] = "kelvaris-front-ends.so";

// The running program's own folder, read from the kernel: no application
// object exists yet to ask.
QString programFolder() {
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).absolutePath();
}

} // namespace

int RunFrontEnds(int argc, char* argv[], const FrontEndsStart& start) {
    const QString folder = programFolder();
    const QString name = QString::fromLatin1(kModuleName);
    void* module = nullptr;
    for (const QString& path :
         QStringList{folder + u'/' + name, folder + u"/../lib/kelvaris/" + name}) {
        if (QFileInfo::exists(path)) {
            module = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
            break;
        }
    }
    if (module == nullptr) {
        const char* reason = dlerror();
        std::fprintf(stderr, "Kelvaris: cannot load %s: %s\n", kModuleName,
                     reason != nullptr ? reason : "not found beside the program");
        return 1;
    }
    const auto entry =
        reinterpret_cast<decltype(&KelvarisFrontEndsMain)>(dlsym(module, KELVARIS_FRONT_ENDS_MAIN));
    if (entry == nullptr) {
        std::fprintf(stderr, "Kelvaris: %s has no entry point\n", kModuleName);
        return 1;
    }
    // The module stays loaded to the end: Qt's objects outlive this call.
    return entry(argc, argv, start);
}
