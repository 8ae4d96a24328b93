#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <cstring>
#include <vector>

// The keys that tell a catalogue's textures apart: folder + "/" + file in
// lower case, as UTF-8, so names in mixed letter case count as one texture.

// An ASCII letter in lower case; any other character as it is.
constexpr char16_t FoldAscii(char16_t c) {
    return c >= u'A' && c <= u'Z' ? char16_t(c + (u'a' - u'A')) : c;
}

// Eight bytes at `bytes` as one word, in the machine's own byte order.
inline quint64 WordAt(const char* bytes) {
    quint64 word = 0;
    std::memcpy(&word, bytes, 8);
    return word;
}

// Eight bytes of plain ASCII (each below 0x80) as one word, with their
// capitals in lower case: 'A' to 'Z' are the bytes that reach 0x80 when 0x3F
// is added but not when 0x25 is, and no byte below 0x80 carries into the
// next.
constexpr quint64 FoldAsciiWord(quint64 word) {
    constexpr quint64 kHigh = 0x8080808080808080ULL;
    const quint64 capitals =
        (word + 0x3F3F3F3F3F3F3F3FULL) & ~(word + 0x2525252525252525ULL) & kHigh;
    return word | capitals >> 2;
}

// The key of a text: lower case, as UTF-8. Plain ASCII, by far the most
// common, is lowered here without Qt's tables.
QByteArray TextureKey(const QString& text);

// The hash TextureKeys files a key under; seeded afresh in every process, so
// no archive can be made to fill one chain with its names.
size_t TextureKeyHash(QByteArrayView key);

// A run of bytes as a QHash key, filed under TextureKeyHash.
struct ByteKey {
    QByteArrayView bytes;
    friend bool operator==(ByteKey a, ByteKey b) {
        return a.bytes.size() == b.bytes.size() &&
               std::memcmp(a.bytes.data(), b.bytes.data(), size_t(a.bytes.size())) == 0;
    }
    friend size_t qHash(ByteKey key, size_t seed = 0) { return TextureKeyHash(key.bytes) ^ seed; }
};

// A set of keys held as views of bytes kept elsewhere, filed under hashes
// worked out beforehand (on other threads, for the catalogue build's tens of
// thousands of textures).
class TextureKeys {
public:
    void Reserve(qsizetype count);
    // False when the key is in the set already. The bytes must outlive the set.
    bool Insert(QByteArrayView key, size_t hash);
    // The same for a key the set keeps a copy of.
    bool InsertCopy(const QByteArray& key);
    void Remove(QByteArrayView key, size_t hash);
    // Asks the processor to fetch the slot a key of this hash starts from,
    // for a caller that knows the next keys' hashes ahead of time.
    void Prefetch(size_t hash) const {
        if (!slots_.empty())
            __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
    }

private:
    struct Key {
        size_t hash = 0;
        QByteArrayView bytes;
        bool present = false;
    };
    // A slot holds the high half of its key's hash beside the key's place,
    // so a probe looks at one cache line and reads the key itself only when
    // that half matches.
    struct Slot {
        quint32 tag = 0;
        quint32 key = 0; // 1 + a place in keys_, 0 for an empty slot
    };
    // The slot holding the key, or the empty slot where it would go.
    size_t find(QByteArrayView key, size_t hash) const;
    void grow();

    QList<Key> keys_; // every key ever inserted; Remove clears `present`
    std::vector<Slot> slots_;
    QList<QByteArray> copies_;
};
