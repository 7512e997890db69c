// Eleven functions of the engine, written anew for a service whose messages hold no references.
//
// The engine keeps two tables for references between elements, one for reading and one for
// writing. It empties both up to six times for each message, by a walk over all their places, and
// walks once more to resolve what they hold. In a message without references they stay empty, and
// the walks are half of what a small request costs. These functions walk only when something was
// entered, and the beginning of a message, which would walk by itself, is read here when it is
// plain XML, and else left to the engine. A copy of a context is made without the tables and
// buffers, which are two thirds of it and say nothing. And tags, texts and characters without
// special meaning are read directly from the buffer; all others are left to the engine, from where
// they begin.
//
// leanEngine.py puts them in place of the engine's own, keeps the engine's under the names below,
// and stops the build for an engine that it does not know.
//
// They use no more than what the engine's public header declares.
#include <stdsoap2.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

extern "C" {
// The engine's own.
int engineResolve(soap* context);
void engineFreeTemp(soap* context);
int engineBeginReceive(soap* context);
soap_wchar engineGet(soap* context);
int enginePeekElement(soap* context);
int engineEndElement(soap* context, const char* tag);
int engineMatchTag(soap* context, const char* tag, const char* wanted);
char* engineStringIn(soap* context, int flag, long least, long most, const char* pattern);
const char* engineValue(soap* context);
soap_ilist* engineEnter(soap* context, const char* id, int type, size_t size);
// In the engine's library, and in its header only for those who ask for cookies.
soap_cookie* soap_copy_cookies(soap* copy, const soap* original);
}

namespace {

// Whether an id was ever entered in a table of this process. It never is while every context
// that reads is in the mode that ignores references, but nothing depends on that.
std::atomic<bool> anyEntered{false};

bool hasNoEntries(const soap& context) {
    // What is entered for writing is kept in blocks, of which pblk is the first.
    return !anyEntered.load(std::memory_order_relaxed) && context.pblk == nullptr;
}

template <typename Item>
void freeList(Item*& first) {
    while (first != nullptr) {
        Item* const next = first->next;
        std::free(first);
        first = next;
    }
}

void freeLocalNamespaces(soap& context) {
    if (context.local_namespaces == nullptr) {
        return;
    }
    for (Namespace* row = context.local_namespaces; row->id != nullptr; ++row) {
        std::free(row->out);
    }
    std::free(context.local_namespaces);
    context.local_namespaces = nullptr;
}

/// Whether `copy` has a plug-in of its own for each of `original`.
bool copyPlugins(soap& copy, const soap& original) {
    copy.plugins = nullptr;
    for (soap_plugin* next = original.plugins; next != nullptr; next = next->next) {
        auto* const added = static_cast<soap_plugin*>(std::malloc(sizeof(soap_plugin)));
        if (added == nullptr) {
            return false;
        }
        *added = *next;
        if (next->fcopy != nullptr && (copy.error = next->fcopy(&copy, added, next)) != SOAP_OK) {
            std::free(added);
            return false;
        }
        added->next = copy.plugins;
        copy.plugins = added;
    }
    return true;
}

/// Copies all but the tables, which are empty in a copy, and the part of the buffer that holds
/// nothing unread.
void copyContent(soap& copy, const soap& original) {
    const auto copyBetween = [&](size_t begin, size_t end) {
        std::memcpy(reinterpret_cast<char*>(&copy) + begin,
                    reinterpret_cast<const char*>(&original) + begin, end - begin);
    };
    static_assert(offsetof(soap, iht) < offsetof(soap, pht) &&
                  offsetof(soap, pht) < offsetof(soap, buf) &&
                  offsetof(soap, buf) < offsetof(soap, mht));
    copyBetween(0, offsetof(soap, iht));
    copyBetween(offsetof(soap, pht) + sizeof(soap::pht), offsetof(soap, buf));
    copyBetween(offsetof(soap, buf), offsetof(soap, buf) + original.buflen);
    copyBetween(offsetof(soap, buf) + sizeof(soap::buf), offsetof(soap, mht));
    copyBetween(offsetof(soap, mht) + sizeof(soap::mht), sizeof(soap));
    std::memset(copy.iht, 0, sizeof(copy.iht));
    std::memset(copy.pht, 0, sizeof(copy.pht));
}

/// Forgets what belongs to the context that the content was copied from.
void disown(soap& copy) {
    copy.state = SOAP_COPY;
    copy.error = SOAP_OK;
    copy.bearer = copy.userid = copy.passwd = nullptr;
    copy.nlist = nullptr;
    copy.blist = nullptr;
    copy.clist = nullptr;
    copy.alist = nullptr;
    copy.attributes = nullptr;
    copy.labbuf = nullptr;
    copy.lablen = copy.labidx = 0;
    copy.local_namespaces = nullptr;
    copy.bio = nullptr;
    copy.ssl = nullptr;
    copy.session = nullptr;
    copy.session_host[0] = '\0';
    copy.session_port = 443;
    copy.c_locale = nullptr;
    copy.d_stream = nullptr;
    copy.z_buf = nullptr;
    copy.pblk = nullptr;
    copy.pidx = 0;
    copy.header = nullptr;
    copy.fault = nullptr;
    copy.action = nullptr;
    copy.plugins = nullptr;
}

}  // namespace

// Like the engine's own function: when memory runs out, the copy does nothing.
soap::soap(const struct soap& original) {  // NOLINT(cppcoreguidelines-pro-type-member-init)
    state = SOAP_NONE;
    if (original.state != SOAP_INIT && original.state != SOAP_COPY) {
        return;
    }
    copyContent(*this, original);
    disown(*this);
    namespaces = original.local_namespaces;
    soap_set_local_namespaces(this);
    namespaces = original.namespaces;
    cookies = soap_copy_cookies(this, &original);
    if (!copyPlugins(*this, original)) {
        soap_end(this);
        soap_done(this);
    }
}

soap_ilist* soap_enter(soap* context, const char* id, int type, size_t size) {
    anyEntered.store(true, std::memory_order_relaxed);
    return engineEnter(context, id, type, size);
}

int soap_resolve(soap* context) {
    return hasNoEntries(*context) ? SOAP_OK : engineResolve(context);
}

/// Frees what belongs to one message.
void soap_free_temp(soap* context) {
    if (!hasNoEntries(*context)) {
        engineFreeTemp(context);
        return;
    }
    freeList(context->nlist);
    while (context->blist != nullptr) {
        soap_end_block(context, nullptr);
    }
    for (struct soap_attribute* next = context->attributes; next != nullptr; next = next->next) {
        std::free(next->value);
    }
    freeList(context->attributes);
    std::free(context->labbuf);
    context->labbuf = nullptr;
    context->lablen = 0;
    context->labidx = 0;
    freeLocalNamespaces(*context);
    freeList(context->xlist);
}

namespace {

/// What was read of a message before it turned out to be the engine's to begin. The bytes are in
/// the context's buffer, to which the engine reads too.
struct Replay {
    size_t (*receive)(soap*, char*, size_t);
    size_t size;
};
thread_local Replay replay;

size_t receiveAgain(soap* context, char* /*buffer*/, size_t /*room*/) {
    context->frecv = replay.receive;
    return replay.size;
}

/// Whether only XML is expected, without HTTP headers or packing that the engine would have to take
/// off.
bool expectsPlainXml(const soap& context) {
    constexpr soap_mode kOthers =
        SOAP_IO_KEEPALIVE | SOAP_ENC_PLAIN | SOAP_ENC_DIME | SOAP_ENC_MIME | SOAP_ENC_ZLIB;
    return (context.imode & kOthers) == 0 && (context.imode & SOAP_IO) != SOAP_IO_CHUNK &&
           hasNoEntries(context) && context.ssl == nullptr && context.fprepareinitrecv == nullptr &&
           context.fpreparerecv == nullptr && context.ffilterrecv == nullptr;
}

/// As the engine begins every message.
void resetForReceiving(soap& context) {
    context.error = SOAP_OK;
    context.recverror = SOAP_OK;
    soap_free_temp(&context);
    soap_set_local_namespaces(&context);
    context.version = 0;
    context.mode = context.imode;
    context.keep_alive = 0;
    context.bufidx = context.buflen = 0;
    context.shaky = 0;
    context.position = 0;
    context.mustUnderstand = 0;
    context.null = 0;
    context.ahead = 0;
    context.peeked = 0;
    context.level = 0;
    context.part = SOAP_BEGIN_RECV;
    context.cdata = 0;
    context.count = context.length = 0;
    context.endpoint[0] = '\0';
    context.action = nullptr;
    context.fform = nullptr;
    context.header = nullptr;
    context.fault = nullptr;
    context.status = 0;
    context.body = 1;
    context.dom = nullptr;
    context.dime.count = context.dime.chunksize = context.dime.buflen = 0;
    context.dime.list = context.dime.first = context.dime.last = nullptr;
    context.mime.boundary = nullptr;
    context.mime.start = nullptr;
    context.mime.list = context.mime.first = context.mime.last = nullptr;
    context.zlib_in = context.zlib_out = SOAP_ZLIB_NONE;
    context.z_ratio_in = 1.0F;
    context.start = static_cast<ULONG64>(std::time(nullptr));
}

}  // namespace

int soap_begin_recv(soap* context) {
    if (!expectsPlainXml(*context)) {
        return engineBeginReceive(context);
    }
    resetForReceiving(*context);
    if (soap_recv(context) != SOAP_OK) {
        context->error = context->error != SOAP_OK ? context->error : SOAP_EOF;
        return context->error;
    }
    if (context->buf[context->bufidx] == '<') {
        return SOAP_OK;
    }
    replay = {context->frecv, context->buflen};
    context->frecv = receiveAgain;
    return engineBeginReceive(context);
}

/// The next character, or what a piece of markup that begins here means to the engine.
soap_wchar soap_get(soap* context) {
    if (context->ahead == 0 && context->cdata == 0 && context->bufidx < context->buflen) {
        const auto byte = static_cast<unsigned char>(context->buf[context->bufidx]);
        if (byte != '<' && byte != '>' && byte != '&' && byte != '"' && byte != '\'') {
            ++context->bufidx;
            return byte;
        }
    }
    return engineGet(context);
}

namespace {

/// What a byte is to the reader of plain XML.
enum ByteKind : unsigned char {
    kName,  // means nothing of itself: part of a name, a text or a value
    kSlash,
    kBlank,
    kMark,  // < > =
    kOdd,   // all others: quotes, & and what is not printable ASCII
};

constexpr auto kKinds = [] {
    std::array<ByteKind, 256> kinds{};
    for (unsigned byte = 0; byte < kinds.size(); ++byte) {
        kinds[byte] = byte > ' ' && byte < 0x7F ? kName : kOdd;
    }
    const auto set = [&kinds](std::string_view bytes, ByteKind kind) {
        for (const char byte : bytes) {
            kinds[static_cast<unsigned char>(byte)] = kind;
        }
    };
    set("\"'&", kOdd);
    set("/", kSlash);
    set("<>=", kMark);
    set(" \t\r\n", kBlank);
    return kinds;
}();

ByteKind kindOf(char byte) {
    return kKinds[static_cast<unsigned char>(byte)];
}

/// Passes over many bytes at once that are kName. All of them are above a slash and none is like
/// '<', so where this stops need not be an end.
const char* passMany(const char* at, const char* end) {
#ifdef __SSE2__
    const __m128i slash = _mm_set1_epi8('/');
    const __m128i mark = _mm_set1_epi8('<');
    const __m128i markBits = _mm_set1_epi8('\xFC');
    const __m128i last = _mm_set1_epi8('~');
    while (end - at >= static_cast<std::ptrdiff_t>(sizeof(__m128i))) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        // The comparison is one of signed bytes: what is no ASCII is below all.
        const __m128i plain =
            _mm_andnot_si128(_mm_or_si128(_mm_cmpeq_epi8(_mm_and_si128(bytes, markBits), mark),
                                          _mm_cmpgt_epi8(bytes, last)),
                             _mm_cmpgt_epi8(bytes, slash));
        const int found = _mm_movemask_epi8(plain) ^ 0xFFFF;
        if (found != 0) {
            return at + std::countr_zero(static_cast<unsigned>(found));
        }
        at += sizeof(__m128i);
    }
#endif
    (void)end;
    return at;
}

/// Looks over the bytes that the engine has in its buffer; never at one beyond them.
class Lookout {
public:
    explicit Lookout(const soap& context)
        : m_at(context.buf + context.bufidx), m_end(context.buf + context.buflen), m_from(m_at) {}

    const char* At() const { return m_at; }
    size_t Passed() const { return static_cast<size_t>(m_at - m_from); }
    bool IsAt(char wanted) const { return m_at != m_end && *m_at == wanted; }
    bool IsAt(ByteKind wanted) const { return m_at != m_end && kindOf(*m_at) == wanted; }
    bool Take(char wanted) {
        const bool taken = IsAt(wanted);
        m_at += taken ? 1 : 0;
        return taken;
    }
    void PassBlanks() {
        while (IsAt(kBlank)) {
            ++m_at;
        }
    }
    void PassName() {
        for (m_at = passMany(m_at, m_end); IsAt(kName);) {
            ++m_at;
        }
    }
    /// Passes over a text's bytes; whether one of them was blank.
    bool PassText() {
        bool blank = false;
        for (m_at = passMany(m_at, m_end); m_at != m_end; ++m_at) {
            const ByteKind kind = kindOf(*m_at);
            if (kind == kOdd || (kind == kMark && *m_at != '=')) {
                break;
            }
            blank |= kind == kBlank;
        }
        return blank;
    }

private:
    const char* m_at;
    const char* m_end;
    const char* m_from;
};

/// Whether the next thing to read is what the buffer says, in a mode that has no more to do with
/// it than to read it.
bool readsBuffer(const soap& context) {
    constexpr soap_mode kOthers = SOAP_XML_DOM | SOAP_XML_GRAPH | SOAP_XML_STRICT |
                                  SOAP_XML_IGNORENS | SOAP_ENC_MTOM | SOAP_ENC_DIME |
                                  SOAP_C_MBSTRING;
    return context.cdata == 0 && (context.mode & kOthers) == 0;
}

void forgetElement(soap& context) {
    context.peeked = 1;
    context.id[0] = context.href[0] = context.type[0] = '\0';
    context.arrayType[0] = context.arraySize[0] = context.arrayOffset[0] = '\0';
    context.other = 0;
    context.root = -1;
    context.position = 0;
    context.null = 0;
    context.mustUnderstand = 0;
}

bool copyText(char* target, size_t room, const char* begin, const char* end) {
    const auto size = static_cast<size_t>(end - begin);
    if (size >= room) {
        return false;
    }
    std::memcpy(target, begin, size);
    target[size] = '\0';
    return true;
}

bool hasDefaultNamespace(const soap& context) {
    const struct soap_nlist* next = context.nlist;
    while (next != nullptr && next->id[0] != '\0') {
        next = next->next;
    }
    return next != nullptr;
}

/// The attribute of that name, which the engine keeps from element to element. Null for one that
/// it has not met, or that may mean something to itself.
struct soap_attribute* knownAttribute(const soap& context, const char* name, const char* end) {
    const auto size = static_cast<size_t>(end - name);
    struct soap_attribute* next = context.attributes;
    while (next != nullptr &&
           (next->name[0] != *name || std::strncmp(next->name, name, size) != 0 ||
            next->name[size] != 0)) {
        next = next->next;
    }
    const auto is = [&](std::string_view other) { return std::string_view(name, size) == other; };
    const bool mayMean = std::memchr(name, ':', size) != nullptr || is("id") || is("href") ||
                         is("ref") || is("xmlns");
    return mayMean ? nullptr : next;
}

/// One attribute of a tag, of those that have no meaning but to the service.
bool readAttribute(soap& context, Lookout& next) {
    const char* const name = next.At();
    next.PassName();
    struct soap_attribute* const attribute = knownAttribute(context, name, next.At());
    if (attribute == nullptr || attribute->visible != 0 || attribute->value == nullptr ||
        !next.Take('=')) {
        return false;
    }
    const char quote = next.IsAt('"') ? '"' : '\'';
    if (!next.Take(quote)) {
        return false;
    }
    const char* const value = next.At();
    next.PassText();
    attribute->visible = 2;  // it has a value
    return copyText(attribute->value, attribute->size, value, next.At()) && next.Take(quote);
}

/// Reads what stands in the buffer up to the end of a tag, if all of it is plain. Nothing that it
/// writes before matters to the engine's own reading.
bool readTag(soap& context) {
    Lookout next(context);
    next.PassBlanks();
    if (!next.Take('<')) {
        return false;
    }
    forgetElement(context);
    if (next.IsAt('/')) {  // of the element around; left where it is
        context.tag[0] = '\0';
        context.error = SOAP_NO_TAG;
        return true;
    }
    const char* const name = next.At();
    next.PassName();
    // Signs such as ! and ? begin something else.
    if (next.At() == name || *name < 'A' ||
        !copyText(context.tag, sizeof(context.tag), name, next.At())) {
        return false;
    }
    if (context.nlist != nullptr && context.nlist->level >= context.level) {
        soap_pop_namespace(&context);
    }
    for (struct soap_attribute* each = context.attributes; each != nullptr; each = each->next) {
        each->visible = 0;
    }
    const bool mayHaveAttributes = next.IsAt(kBlank) && !hasDefaultNamespace(context);
    next.PassBlanks();
    while (mayHaveAttributes && next.IsAt(kName)) {
        if (!readAttribute(context, next)) {
            return false;
        }
        next.PassBlanks();
    }
    const bool isEmpty = next.Take('/');
    if (!next.Take('>')) {
        return false;
    }
    context.body = isEmpty ? 0 : 1;
    context.bufidx += next.Passed();
    context.error = SOAP_OK;
    return true;
}

int peekAnew(soap& context) {
    if (context.ahead == 0 && context.feltbegin == nullptr && readsBuffer(context)) {
        if (readTag(context)) {
            return context.error;
        }
        context.peeked = 0;
    }
    return enginePeekElement(&context);
}

}  // namespace

/// Reads the tag of the next element, which stays the next until it is taken.
int soap_peek_element(soap* context) {
    if (context->peeked != 0) {
        return context->tag[0] != '\0' ? SOAP_OK : context->error = SOAP_NO_TAG;
    }
    return peekAnew(*context);
}

/// Reads the end of an element. Unknown elements before it are the engine's to pass over.
int soap_element_end_in(soap* context, const char* tag) {
    const bool nothingPeeked = context->peeked == 0 || context->tag[0] == '\0';
    if (!nothingPeeked || (tag != nullptr && *tag == '-') || context->feltendin != nullptr ||
        context->ahead != 0 || !readsBuffer(*context)) {
        return engineEndElement(context, tag);
    }
    Lookout next(*context);
    next.PassBlanks();
    const bool isEnd = next.Take('<') && next.Take('/');
    const char* const name = next.At();
    next.PassName();
    const char* const end = next.At();
    next.PassBlanks();
    if (!isEnd || !next.Take('>') || !copyText(context->tag, sizeof(context->tag), name, end)) {
        return engineEndElement(context, tag);
    }
    if (context->error == SOAP_NO_TAG) {
        context->error = SOAP_OK;
    }
    context->bufidx += next.Passed();
    context->peeked = 0;
    --context->level;
    return SOAP_OK;
}

/// Reads the text of an element, into memory that the context owns.
char* soap_string_in(soap* context, int flag, long least, long most, const char* pattern) {
    constexpr int kNormalized = 4;  // and above: blanks are replaced
    if ((flag != 1 && flag < kNormalized) || pattern != nullptr || context->ahead != 0 ||
        !readsBuffer(*context)) {
        return engineStringIn(context, flag, least, most, pattern);
    }
    Lookout next(*context);
    const char* const begin = next.At();
    const bool blank = next.PassText();
    const size_t size = next.Passed();
    const long limit = most < 0 && context->maxlength > 0 ? context->maxlength : most;
    if ((blank && flag != 1) || !next.Take('<') || !next.IsAt('/') ||
        static_cast<long>(size) < least || (limit >= 0 && static_cast<long>(size) > limit)) {
        return engineStringIn(context, flag, least, most, pattern);
    }
    auto* const text = static_cast<char*>(soap_malloc(context, size + 1));
    if (text != nullptr) {
        copyText(text, size + 1, begin, begin + size);
        context->bufidx += size;
    }
    return text;
}

/// Reads a short text into the context's room for one, without the blanks around it.
const char* soap_value(soap* context) {
    if (context->body == 0 || context->ahead != 0 || !readsBuffer(*context)) {
        return engineValue(context);
    }
    Lookout next(*context);
    next.PassBlanks();
    const char* const begin = next.At();
    next.PassText();
    const char* end = next.At();
    while (end != begin && kindOf(end[-1]) == kBlank) {
        --end;
    }
    const size_t size = next.Passed();
    if (!next.Take('<') || !next.IsAt('/') ||
        !copyText(context->tmpbuf, sizeof(context->tmpbuf), begin, end)) {
        return engineValue(context);
    }
    context->bufidx += size;
    return context->tmpbuf;
}

/// Whether a tag is the one that is wanted. Where the names behind the prefixes differ, or one has
/// no prefix at all, the engine need not be asked what the prefixes stand for.
int soap_match_tag(soap* context, const char* tag, const char* wanted) {
    if (tag == nullptr || wanted == nullptr || *wanted == '\0' ||
        (context->mode & (SOAP_XML_IGNORENS | SOAP_XML_STRICT)) != 0) {
        return engineMatchTag(context, tag, wanted);
    }
    const char* const colon = std::strchr(wanted, ':');
    if (colon == nullptr) {
        return std::strcmp(tag, wanted) == 0 ? SOAP_OK : SOAP_TAG_MISMATCH;
    }
    const char* const own = std::strchr(tag, ':');
    const bool differs =
        colon[1] != '\0' && std::strcmp(own != nullptr ? own + 1 : tag, colon + 1) != 0;
    if (differs || (own == nullptr && colon != wanted && !hasDefaultNamespace(*context))) {
        return SOAP_TAG_MISMATCH;
    }
    return engineMatchTag(context, tag, wanted);
}
