// The version of the service description itself; no served message carries it.

// clang-format off
/// The version of this description.
class _ns3__SanApiWsdl {
    @std::string                 version 0 = "2.1";
};
// clang-format on
