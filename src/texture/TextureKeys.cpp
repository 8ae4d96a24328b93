#include "TextureKeys.h"

#include <QHashFunctions>
#include <cstring>

QByteArray TextureKey(const QString& text) {
    const QChar* chars = text.constData();
    QByteArray key(text.size(), Qt::Uninitialized);
    char* out = key.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = chars[i].unicode();
        if (c >= 0x80)
            return text.toLower().toUtf8();
        out[i] = char(FoldAscii(c));
    }
    return key;
}

namespace {

// Multiplies in 128 bits and folds the halves together: every bit of either
// factor reaches every bit of the result.
__extension__ typedef unsigned __int128 Wide;

quint64 fold(quint64 a, quint64 b) {
    const Wide product = Wide(a) * b;
    return quint64(product) ^ quint64(product >> 64);
}

constexpr quint64 kOdd1 = 0xa0761d6478bd642fULL;
constexpr quint64 kOdd2 = 0xe7037ed1a0b428dbULL;

} // namespace

// Sixteen bytes at a time, the two words folded together, each mixed with
// something only this process knows (the hash so far starts from its seed),
// so no name can be made to zero a product. Qt's own hash of bytes is not
// used here: it runs in 256-bit vector registers and leaves them in a state
// that slows the catalogue build's own loops after every call.
size_t TextureKeyHash(QByteArrayView key) {
    static const quint64 seed = fold(QHashSeed::globalSeed() ^ kOdd1, kOdd2);
    static const quint64 seed2 = fold(seed ^ kOdd2, kOdd1);
    const char* bytes = key.data();
    qsizetype left = key.size();
    quint64 hash = seed ^ quint64(left);
    for (; left >= 16; bytes += 16, left -= 16)
        hash = fold(hash ^ WordAt(bytes), WordAt(bytes + 8) ^ seed2);
    quint64 first = 0;
    quint64 second = 0;
    if (left > 8) {
        first = WordAt(bytes);
        std::memcpy(&second, bytes + 8, size_t(left - 8));
    } else {
        std::memcpy(&first, bytes, size_t(left));
    }
    return fold(fold(hash ^ first, second ^ seed2), kOdd1);
}

void TextureKeys::Reserve(qsizetype count) {
    keys_.reserve(count);
    size_t slots = 16;
    while (slots < size_t(count) * 2)
        slots *= 2;
    if (slots > slots_.size()) {
        slots_.assign(slots, Slot());
        for (qsizetype i = 0; i < keys_.size(); ++i)
            slots_[find(keys_[i].bytes, keys_[i].hash)] = {quint32(keys_[i].hash >> 32),
                                                           quint32(i + 1)};
    }
}

// Open addressing with linear probing; the table is kept at most half full.
size_t TextureKeys::find(QByteArrayView key, size_t hash) const {
    const size_t mask = slots_.size() - 1;
    const quint32 tag = quint32(hash >> 32);
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Slot& held = slots_[slot];
        if (held.key == 0)
            return slot;
        if (held.tag != tag)
            continue;
        const Key& other = keys_[held.key - 1];
        if (other.hash == hash && other.bytes == key)
            return slot;
    }
}

void TextureKeys::grow() {
    Reserve(qMax<qsizetype>(16, keys_.size() * 2));
}

bool TextureKeys::Insert(QByteArrayView key, size_t hash) {
    if (size_t(keys_.size() + 1) * 2 > slots_.size())
        grow();
    const size_t slot = find(key, hash);
    if (slots_[slot].key != 0) {
        Key& held = keys_[slots_[slot].key - 1];
        if (held.present)
            return false;
        held = {hash, key, true}; // a removed key comes back
        return true;
    }
    keys_.append({hash, key, true});
    slots_[slot] = {quint32(hash >> 32), quint32(keys_.size())};
    return true;
}

bool TextureKeys::InsertCopy(const QByteArray& key) {
    const size_t hash = TextureKeyHash(key);
    if (!slots_.empty()) {
        const quint32 held = slots_[find(key, hash)].key;
        if (held != 0 && keys_[held - 1].present)
            return false;
    }
    copies_.append(key);
    return Insert(copies_.last(), hash);
}

void TextureKeys::Remove(QByteArrayView key, size_t hash) {
    if (slots_.empty())
        return;
    const quint32 held = slots_[find(key, hash)].key;
    if (held != 0)
        keys_[held - 1].present = false;
}
