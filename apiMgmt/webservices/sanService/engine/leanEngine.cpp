// Six functions of the engine, written anew for a service whose messages hold no references.
//
// The engine keeps two tables for references between elements, one for reading and one for
// writing. It empties both up to six times for each message, by a walk over all their places, and
// walks once more to resolve what they hold. In a message without references they stay empty, and
// the walks are half of what a small request costs. These functions walk only when something was
// entered, and the beginning of a message, which would walk by itself, is read here when it is
// plain XML, and else left to the engine. A copy of a context is made without the tables and
// buffers, which are two thirds of it and say nothing. And a character without special meaning is
// read directly.
//
// leanEngine.py puts them in place of the engine's own, keeps the engine's under the names below,
// and stops the build for an engine that it does not know.
//
// They use no more than what the engine's public header declares.
#include <stdsoap2.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>

extern "C" {
// The engine's own.
int engineResolve(soap* context);
void engineFreeTemp(soap* context);
int engineBeginReceive(soap* context);
soap_wchar engineGet(soap* context);
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
