// client/store/seal.cpp: encryption of the sealed items of a note.
// A sealed value is a mark, a random nonce, and the text encrypted with its authentication code
// (XChaCha20-Poly1305); the mark is authenticated with it.
#include "client/store/seal.h"

#include <fcntl.h>
#include <sodium.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "client/store/descriptor.h"
#include "client/store/host.h"

namespace pavex {

namespace {

constexpr std::string_view kMark = "PVS1";
constexpr size_t kNonceBytes = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr size_t kCodeBytes = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr size_t kKeyBytes = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;

// A key that does not stay in memory longer than it is used.
struct Key {
    std::array<unsigned char, kKeyBytes> bytes{};
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { sodium_memzero(bytes.data(), bytes.size()); }
};

std::string KeyPath()
{
    return CurrentPlaces().data + "/seal.key";
}

// False when there is none or the file is not one; errno then tells, 0 for the latter.
bool ReadKey(Key* key)
{
    const Descriptor file(open(KeyPath().c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        return false;
    std::string bytes;
    const bool whole = ReadAll(file.Get(), &bytes);
    const int error = whole ? 0 : errno;
    const bool isKey = whole && bytes.size() == key->bytes.size();
    if (isKey)
        std::memcpy(key->bytes.data(), bytes.data(), bytes.size());
    sodium_memzero(bytes.data(), bytes.size());
    errno = error;
    return isKey;
}

// Made aside and linked into place: when two processes seal their first note at once, both end up with the
// key of one of them.
bool MakeKey()
{
    std::string aside = KeyPath() + ".XXXXXX";
    const Descriptor file(mkostemp(aside.data(), O_CLOEXEC));  // mode 0600
    if (!file.IsOpen())
        return false;
    Key key;
    randombytes_buf(key.bytes.data(), key.bytes.size());
    const void* const bytes = key.bytes.data();
    const bool written = WriteAll(file.Get(), {static_cast<const char*>(bytes), key.bytes.size()}) &&
                         fsync(file.Get()) == 0 && (link(aside.c_str(), KeyPath().c_str()) == 0 || errno == EEXIST);
    unlink(aside.c_str());
    return written;
}

unsigned char* Unsigned(char* bytes)
{
    void* const same = bytes;
    return static_cast<unsigned char*>(same);
}

const unsigned char* Unsigned(const char* bytes)
{
    const void* const same = bytes;
    return static_cast<const unsigned char*>(same);
}

}  // namespace

bool SealValue(std::string_view plain, std::string* sealed)
{
    Key key;
    if (sodium_init() < 0)
        return false;
    if (!ReadKey(&key) && (errno != ENOENT || !MakeKey() || !ReadKey(&key)))
        return false;
    std::string result(kMark);
    result.resize(kMark.size() + kNonceBytes + plain.size() + kCodeBytes);
    unsigned char* const nonce = Unsigned(result.data()) + kMark.size();
    randombytes_buf(nonce, kNonceBytes);
    unsigned long long written = 0;
    crypto_aead_xchacha20poly1305_ietf_encrypt(nonce + kNonceBytes, &written, Unsigned(plain.data()), plain.size(),
                                               Unsigned(kMark.data()), kMark.size(), nullptr, nonce, key.bytes.data());
    *sealed = std::move(result);
    return true;
}

STATUS UnsealValue(std::string_view sealed, std::string* plain)
{
    if (!sealed.starts_with(kMark) || sealed.size() < kMark.size() + kNonceBytes + kCodeBytes)
        return kStatusDamaged;
    Key key;
    if (sodium_init() < 0 || !ReadKey(&key))
        return kStatusSealed;
    const unsigned char* const nonce = Unsigned(sealed.data()) + kMark.size();
    const size_t encryptedBytes = sealed.size() - kMark.size() - kNonceBytes;
    std::string result(encryptedBytes - kCodeBytes, '\0');
    unsigned long long written = 0;
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(Unsigned(result.data()), &written, nullptr, nonce + kNonceBytes,
                                                   encryptedBytes, Unsigned(kMark.data()), kMark.size(), nonce,
                                                   key.bytes.data()) != 0)
        return kStatusSealed;
    *plain = std::move(result);
    return kStatusOk;
}

}  // namespace pavex
