// Enumerations of the contract. The text on the wire is the identifier after the type's name: "_"
// stands for a hyphen, "_x0020" for a blank. The values count from 0 in the order written and must
// stay as they are: a client may send the number in place of the text.
//
// How to add a value: at the end of its enumeration.

// clang-format off
/// What an address says that it is.
enum ns1__InetAddressType {
    ns1__InetAddressType__unknown,
    ns1__InetAddressType__ipv4,
    ns1__InetAddressType__ipv6,
    ns1__InetAddressType__dns
};

enum ns1__CfmStatus {
    ns1__CfmStatus__primary,
    ns1__CfmStatus__capable,
    ns1__CfmStatus__none
};

enum ns1__CacheDeviceStatus {
    ns1__CacheDeviceStatus__used,
    ns1__CacheDeviceStatus__available,
    ns1__CacheDeviceStatus__unavailable,
    ns1__CacheDeviceStatus__degraded,
    ns1__CacheDeviceStatus__prepare_x0020for_x0020removal,
    ns1__CacheDeviceStatus__removing,
    ns1__CacheDeviceStatus__failed,
    ns1__CacheDeviceStatus__unknown
};

enum ns1__CacheDeviceMemoryType {
    ns1__CacheDeviceMemoryType__nvm,
    ns1__CacheDeviceMemoryType__ram
};

enum ns1__HcnStatus {
    ns1__HcnStatus__used,
    ns1__HcnStatus__available,
    ns1__HcnStatus__unavailable,
    ns1__HcnStatus__degraded,
    ns1__HcnStatus__removing,
    ns1__HcnStatus__down
};

// "unknown" stands before "writeback".
enum ns1__CacheMode {
    ns1__CacheMode__writethrough,
    ns1__CacheMode__passthrough,
    ns1__CacheMode__unknown,
    ns1__CacheMode__writeback
};

enum ns1__CachePolicy {
    ns1__CachePolicy__proportional,
    ns1__CachePolicy__clientaffinity
};

/// The kinds of storage array that a cluster can be attached to.
enum ns1__SanType {
    ns1__SanType__OSL,
    ns1__SanType__VQD
};

enum ns1__SanStatus {
    ns1__SanStatus__up,
    ns1__SanStatus__down,
    ns1__SanStatus__degraded
};

enum ns1__HccStatus {
    ns1__HccStatus__Initializing,
    ns1__HccStatus__Active,
    ns1__HccStatus__Preparing_x0020for_x0020Maintenance,
    ns1__HccStatus__In_x0020Maintenance_x0020Mode,
    ns1__HccStatus__Exiting_x0020Maintenance_x0020Mode,
    ns1__HccStatus__Invalid
};

enum ns1__LinkSpeed {
    ns1__LinkSpeed__unknown,
    ns1__LinkSpeed__1000,
    ns1__LinkSpeed__10000,
    ns1__LinkSpeed__40000,
    ns1__LinkSpeed__100000
};

enum ns1__LinkState {
    ns1__LinkState__up,
    ns1__LinkState__down
};

/// The transport of an interface to the storage.
enum ns1__InterfaceType {
    ns1__InterfaceType__unknown,
    ns1__InterfaceType__fc,
    ns1__InterfaceType__iscsi
};

enum ns1__eventSeverity {
    ns1__eventSeverity__ES_UNUSED,
    ns1__eventSeverity__ES_CRITICAL,
    ns1__eventSeverity__ES_WARNING,
    ns1__eventSeverity__ES_INFORMATIONAL
};

enum ns1__ConfigActionType {
    ns1__ConfigActionType__SET,
    ns1__ConfigActionType__UNSET
};

enum ns1__AttachType {
    ns1__AttachType__create,
    ns1__AttachType__addhcn,
    ns1__AttachType__primarycfmelection
};

/// END closes the list and is a value of its own.
enum ns1__eventArgType {
    ns1__eventArgType__SIZE,
    ns1__eventArgType__MODE,
    ns1__eventArgType__HCC_ID,
    ns1__eventArgType__CACHEDEVICE_ID,
    ns1__eventArgType__CACHEDEVICE_PATH,
    ns1__eventArgType__STORAGE_PATH_WWN,
    ns1__eventArgType__STORAGE_PATH_PATH,
    ns1__eventArgType__SAN_VOLUME_WWN,
    ns1__eventArgType__SAN_VOLUME_PATH,
    ns1__eventArgType__JOURNAL_LOCATION,
    ns1__eventArgType__CACHED_LUN_NAME,
    ns1__eventArgType__HCN_ID,
    ns1__eventArgType__MGMT_IP,
    ns1__eventArgType__CACHE_NET_IP,
    ns1__eventArgType__SAN_ID,
    ns1__eventArgType__SAN_NAME,
    ns1__eventArgType__SAN_TYPE,
    ns1__eventArgType__HC_VOLUME_ID,
    ns1__eventArgType__SAN_VOLUME_ID,
    ns1__eventArgType__SNAPSHOT_ID,
    ns1__eventArgType__END
};
// clang-format on
