#include "clsDLL.h"

#include <dlfcn.h>

void clsDLL::UnloadDLL() {
    if (module_)
        dlclose(module_);
    module_ = nullptr;
}

bool clsDLL::LoadDLL(const QString& FileName) {
    cdecl_ = false;
    if (FileName.isEmpty())
        return false;
    module_ = dlopen(FileName.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    return module_ != nullptr;
}

void* clsDLL::Export(const char* name) {
    void* address = module_ ? dlsym(module_, name) : nullptr;
    lastError_ = address ? QString() : QStringLiteral("Export function not found in DLL!");
    return address;
}
