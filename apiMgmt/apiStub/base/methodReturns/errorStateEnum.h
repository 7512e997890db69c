#pragma once

/// What kind of failure an error or a method return carries. The numbers travel in replies of
/// the API manager; a number without a name here is carried all the same.
///
/// To add one, give it its number here and its text in the list of error states.
enum class ErrorStateEnum : int {
    Unknown = 0,
    NoError = 1,
    InternalError = 2,
    UnknownCommand = 3,
    ParsingError = 4,  // a malformed reply, or an attribute value that is not acceptable
    ConnectionError = 5,
    Timeout = 6,
    NotLoggedIn = 7,
    InvalidRequest = 8,  // a request that cannot be built
    InvalidCredentials = 9,
    CommandFailed = 10,  // reported through a status record
    InsufficientPrivilege = 11,
    SessionExpired = 12,
    VersionNotSupported = 13,
    NotSupported = 14,
    NotLicensed = 15,
    ObjectNotFound = 16,
    ObjectAlreadyExists = 17,
    ObjectInUse = 18,
    ObjectLocked = 19,
    InvalidState = 20,
    SystemBusy = 21,
    ControllerUnavailable = 22,
    InsufficientSpace = 23,
    LimitExceeded = 24,
    InvalidValue = 25,
    MissingValue = 26,
    DuplicateValue = 27,
    ValueOutOfRange = 28,
    ReadOnlyValue = 29,
    InvalidArguments = 30,
};
