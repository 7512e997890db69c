// The members that contextLayoutTest compares, for both languages to include.
// NOLINTBEGIN(bugprone-sizeof-expression, modernize-use-nullptr)
static const struct contextMember contextMembers[] = {
    {"namespaces", offsetof(struct soap, namespaces)},
    {"user", offsetof(struct soap, user)},
    {"plugins", offsetof(struct soap, plugins)},
    {"fparse", offsetof(struct soap, fparse)},
    {"fresponse", offsetof(struct soap, fresponse)},
    {"fposthdr", offsetof(struct soap, fposthdr)},
    {"fclose", offsetof(struct soap, fclose)},
    {"fsend", offsetof(struct soap, fsend)},
    {"frecv", offsetof(struct soap, frecv)},
    {"fpoll", offsetof(struct soap, fpoll)},
    {"os", offsetof(struct soap, os)},
    {"ssl", offsetof(struct soap, ssl)},
    {"buf", offsetof(struct soap, buf)},
    {"peer", offsetof(struct soap, peer)},
    {"z_ratio_out", offsetof(struct soap, z_ratio_out)},
    {NULL, sizeof(struct soap)},
};
// NOLINTEND(bugprone-sizeof-expression, modernize-use-nullptr)
