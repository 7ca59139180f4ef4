/* What the targets share: the bytes of one input, whose use is decided as they are taken, and what must hold. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

class FuzzInput
{
public:
    FuzzInput(const uint8_t *pucData, size_t uiSize) : m_aucLeft(pucData, uiSize) {}

    bool IsEmpty() const { return m_aucLeft.empty(); }

    /* Taken from the end, 0 when nothing is left, so that a whole file is an input as it stands. One call takes at most
     * one: which argument would be the first is the compiler's choice. */
    uint8_t Take_Byte()
    {
        if (m_aucLeft.empty()) return 0;
        const uint8_t ucByte = m_aucLeft.back();
        m_aucLeft = m_aucLeft.first(m_aucLeft.size() - 1);
        return ucByte;
    }

    uint32_t Take_Number()
    {
        const uint32_t uiHigh = Take_Byte();
        return uiHigh << 8 | Take_Byte();
    }

    FuzzInput Take_Tail(size_t uiMost)
    {
        const size_t uiTaken = m_aucLeft.size() < uiMost ? m_aucLeft.size() : uiMost;
        const std::span<const uint8_t> aucTail = m_aucLeft.last(uiTaken);
        m_aucLeft = m_aucLeft.first(m_aucLeft.size() - uiTaken);
        return {aucTail.data(), aucTail.size()};
    }

    std::span<const uint8_t> Get_Rest() const { return m_aucLeft; }

private:
    std::span<const uint8_t> m_aucLeft;
};

/* A broken promise ends the run as a crash does, so that the input is kept. */
inline void Demand(bool bKept, const char *pszPromise)
{
    if (bKept) return;
    std::fprintf(stderr, "broken: %s\n", pszPromise);
    std::abort();
}

/* What a replay tells of an input: a number that stands for all that was seen of it. */
inline bool g_bTelling;
inline uint64_t g_ullSeen;

inline void Tell_Bytes(const void *pvBytes, size_t uiSize)
{
    if (!g_bTelling) return;
    for (const uint8_t ucByte : std::span(static_cast<const uint8_t *>(pvBytes), uiSize))
        g_ullSeen = (g_ullSeen ^ ucByte) * 0x100000001B3u;
}

inline void Tell_Number(int64_t llNumber)
{
    Tell_Bytes(&llNumber, sizeof(llNumber));
}

/** Bytes at the end of a target's inputs that steer it: repeated tokens go before them. */
extern const size_t g_uiSteeringBytes;

/** One run of the target. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize);
