// The engine's context as one language sees it, for contextLayoutTest: its size, and where the
// members lie that the module sets or that a difference of macros would move.
struct contextMember {
    const char* name;
    size_t offset;
};

// NOLINTBEGIN(bugprone-sizeof-expression)
#define AT(member) \
    { #member, offsetof(struct soap, member) }
static const struct contextMember contextLayout[] = {
    // clang-format off
    {"size", sizeof(struct soap)}, AT(namespaces), AT(user), AT(plugins), AT(fparse), AT(fresponse),
    AT(fposthdr), AT(fclose), AT(fsend), AT(frecv), AT(fpoll), AT(os), AT(ssl), AT(buf), AT(peer),
    AT(z_ratio_out),
    // clang-format on
};
// NOLINTEND(bugprone-sizeof-expression)
