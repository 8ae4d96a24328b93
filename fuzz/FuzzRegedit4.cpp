// Feeds arbitrary bytes to the reader of Kelvaris's own settings store, and
// checks that whatever it reads is written back stably: once a text has been
// read and written, reading and writing that again gives the same bytes. A
// store that drifted on every change would lose or mangle settings.

#include "app/RegText.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<RegDocument> doc = ParseRegedit4(text);
    if (!doc)
        return 0;
    const QByteArray written = WriteRegedit4(*doc);
    const std::optional<RegDocument> again = ParseRegedit4(written);
    if (!again)
        __builtin_trap(); // what the writer wrote cannot be read
    if (WriteRegedit4(*again) != written)
        __builtin_trap(); // reading and writing changed the text a second time
    return 0;
}
