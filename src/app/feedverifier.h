#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// Checks the detached Ed25519 signature of an update feed against the public
// key a build names, so a feed that someone other than its publisher wrote
// (a hijacked server, a tampered mirror) is never believed.
class FeedVerifier
{
public:
    static constexpr qsizetype keySize = 32;
    static constexpr qsizetype signatureSize = 64;

    // The base64 of a raw 32-byte public key; nullopt for anything else.
    static std::optional<FeedVerifier> fromBase64Key(QByteArrayView base64);

    // `signature` is the 64 raw bytes or their base64 (white space around it
    // is ignored).
    bool verifies(const QByteArray &message, const QByteArray &signature) const;

    bool operator==(const FeedVerifier &) const = default;

private:
    explicit FeedVerifier(QByteArray key)
        : m_key(std::move(key))
    {
    }

    QByteArray m_key;
};
