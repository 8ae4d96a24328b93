// Feeds arbitrary bytes to the reader of Wine's registry hives (user.reg), a
// file another program writes and Kelvaris only reads.

#include "app/RegText.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    ParseWineHive(text);
    return 0;
}
