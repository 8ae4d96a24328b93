#pragma once

#include <QString>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>

// A shared library bound at run time: loaded by file name, its exports looked
// up by name at each call. A library that is missing, or an export it lacks,
// is an error value for the caller rather than a failure to start.
class clsDLL {
public:
    clsDLL() = default;
    ~clsDLL() { UnloadDLL(); }
    clsDLL(const clsDLL&) = delete;
    clsDLL& operator=(const clsDLL&) = delete;

    // The handle of the loaded library, null when none.
    void* ModuleHandle() const { return module_; }

    // Which side removes the arguments. Kept for callers that set it; on this
    // platform every export is called through a pointer of its own signature.
    bool IsCDECL() const { return cdecl_; }
    void SetIsCDECL(bool value) { cdecl_ = value; }

    // Releases the library; harmless when nothing is loaded.
    void UnloadDLL();

    // Loads the library by name with the system's search. IsCDECL is reset to
    // false. A library loaded before is not released first.
    bool LoadDLL(const QString& FileName);

    // The address of an export, or null (and LastError set) when the library
    // has no such export or none is loaded. Found addresses are remembered
    // until the library is unloaded: the encoder calls a dozen exports for
    // every block of sound.
    void* Export(const char* name);

    // Calls the named export as a function of type R(Args...). An empty result
    // means the export was not found; LastError() then holds the message.
    template <typename Signature, typename... Args> auto CallFunc(const char* name, Args... args);

    // "Export function not found in DLL!" after a failed look-up, else "".
    const QString& LastError() const { return lastError_; }

private:
    void* module_ = nullptr;
    std::unordered_map<std::string, void*> exports_;
    bool cdecl_ = false;
    QString lastError_;
};

namespace clsDLLDetail {

template <typename Signature> struct Call;

template <typename R, typename... Params> struct Call<R(Params...)> {
    // A function returning void reports success as true.
    using Result = std::conditional_t<std::is_void_v<R>, bool, R>;

    template <typename... Args> static std::optional<Result> run(void* address, Args... args) {
        if (!address)
            return std::nullopt;
        auto function = reinterpret_cast<R (*)(Params...)>(address);
        if constexpr (std::is_void_v<R>) {
            function(static_cast<Params>(args)...);
            return true;
        } else {
            return function(static_cast<Params>(args)...);
        }
    }
};

} // namespace clsDLLDetail

template <typename Signature, typename... Args>
auto clsDLL::CallFunc(const char* name, Args... args) {
    return clsDLLDetail::Call<Signature>::run(Export(name), args...);
}
