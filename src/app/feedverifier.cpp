#include "app/feedverifier.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <memory>

namespace {

struct PkeyFree {
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
};
struct MdCtxFree {
    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};

std::optional<QByteArray> decodeBase64(QByteArrayView text, qsizetype size)
{
    const auto decoded =
        QByteArray::fromBase64Encoding(text.trimmed().toByteArray(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() != size)
        return std::nullopt;
    return decoded.decoded;
}

} // namespace

std::optional<FeedVerifier> FeedVerifier::fromBase64Key(QByteArrayView base64)
{
    auto key = decodeBase64(base64, keySize);
    if (!key)
        return std::nullopt;
    return FeedVerifier(std::move(*key));
}

bool FeedVerifier::verifies(const QByteArray &message, const QByteArray &signature) const
{
    // Raw, the signature is exactly 64 bytes; base64 text is never that long.
    const auto raw =
        signature.size() == signatureSize ? std::optional(signature) : decodeBase64(signature, signatureSize);
    if (!raw)
        return false;
    const std::unique_ptr<EVP_PKEY, PkeyFree> key(EVP_PKEY_new_raw_public_key(
        EVP_PKEY_ED25519, nullptr, reinterpret_cast<const unsigned char *>(m_key.constData()), size_t(m_key.size())));
    const std::unique_ptr<EVP_MD_CTX, MdCtxFree> context(EVP_MD_CTX_new());
    // Ed25519 hashes the message itself: no digest is named.
    const bool good =
        key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1
        && EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char *>(raw->constData()),
                            size_t(raw->size()), reinterpret_cast<const unsigned char *>(message.constData()),
                            size_t(message.size()))
               == 1;
    // A failure leaves its reasons queued in the thread; nobody reads them.
    ERR_clear_error();
    return good;
}
