// Words that host threads and the exchange thread touch without a common lock. The types stay plain, since the records
// they stand in are shared with the host; only the access is atomic. Release and acquire suffice: each such word is a
// flag of its own.
#ifndef VORNEX_BASE_SHARED_WORD_H
#define VORNEX_BASE_SHARED_WORD_H

template <class Word>
inline Word sharedRead(const Word& word) {
    return __atomic_load_n(&word, __ATOMIC_ACQUIRE);
}

template <class Word>
inline void sharedWrite(Word& word, Word value) {
    __atomic_store_n(&word, value, __ATOMIC_RELEASE);
}

#endif
