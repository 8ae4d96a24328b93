#include "clsDLL.h"

#include <dlfcn.h>

void clsDLL::UnloadDLL() {
    if (module_)
        dlclose(module_);
    module_ = nullptr;
    exports_.clear();
}

bool clsDLL::LoadDLL(const QString& FileName) {
    cdecl_ = false;
    if (FileName.isEmpty())
        return false;
    module_ = dlopen(FileName.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    exports_.clear();
    return module_ != nullptr;
}

void* clsDLL::Export(const char* name) {
    void* address = nullptr;
    if (module_ && name) {
        const auto known = exports_.find(name);
        if (known != exports_.end()) {
            address = known->second;
        } else {
            address = dlsym(module_, name);
            if (address)
                exports_.emplace(name, address);
        }
    }
    lastError_ = address ? QString() : QStringLiteral("Export function not found in DLL!");
    return address;
}
