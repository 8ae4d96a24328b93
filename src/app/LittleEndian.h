#pragma once

#include <QByteArrayView>
#include <QtEndian>

// The 32-bit little-endian number at `at` in `bytes`, as the game's archives,
// textures and the picture formats store their fields. The caller has checked
// that four bytes are there.
inline quint32 LittleEndian32(QByteArrayView bytes, qsizetype at) {
    return qFromLittleEndian<quint32>(bytes.data() + at);
}
