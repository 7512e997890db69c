/*
 * What all processes of the server count together.
 *
 * The parent makes one piece of shared memory for it before the first child is forked and keeps it
 * over restarts, so that the counts go on and a new generation of children shares them with those
 * of the old one. Everything in it is written with atomic operations and nothing with a lock. A
 * reader may see a call half counted, never a broken value.
 */
#pragma once

#include <httpd.h>

#include <stddef.h>
#include <stdint.h>

/* How a call that reached the plug-in ended; kSoapOutcomeNames has their names. */
enum SoapOutcome {
    kSoapAnswered,
    kSoapRefusedByService,
    kSoapRefusedByArray,
    kSoapNoAnswer,
    kSoapFailed, /* the plug-in gave no reply */
    kSoapOutcomes
};

/* Why the gate refused a request; kSoapRefusalNames has their names. */
enum SoapRefusal {
    kSoapMethod,
    kSoapMediaType,
    kSoapSize,
    kSoapNoXml,
    kSoapHostile,
    kSoapBroken,
    kSoapBusy,
    kSoapRefusals
};

extern const char* const kSoapOutcomeNames[kSoapOutcomes];
extern const char* const kSoapRefusalNames[kSoapRefusals];

enum {
    kSoapMaxServices = 32,   /* paths of locations that name a plug-in */
    kSoapMaxOperations = 32, /* of one service, the one without a name included */
    kSoapMaxPlaces = 4096,   /* calls of one service at once, in all processes */
    kSoapNameBytes = 64,
    kSoapPathBytes = 128,
    kSoapBuckets = 15 /* the last takes all that is longer */
};

/* The upper ends of all buckets but the last, in nanoseconds. */
extern const uint64_t kSoapBucketEnds[kSoapBuckets - 1];

struct soapHistogram {
    uint64_t buckets[kSoapBuckets];
    uint64_t sum; /* nanoseconds */
};

/* Of a row that has a name; readers look at named ones alone. */
enum { kSoapFree, kSoapBeingNamed, kSoapNamed };

/* What one operation counts. Two processes that meet the
 * same new name at once make a row each; readers add them up. */
struct soapOperationCounts {
    uint32_t state;
    char name[kSoapNameBytes];
    uint64_t outcomes[kSoapOutcomes];
    struct soapHistogram whole; /* from the body's end to the reply, the plug-in alone */
    struct soapHistogram array; /* spent waiting for the array, of calls that asked it */
};

/* A call at work. Its owner gives it back; where the owner dies, the parent does. */
struct soapPlace {
    int32_t owner; /* process id, 0 while free */
    uint32_t operation;
    uint64_t began; /* nanoseconds of the monotonic clock, 0 until it is set */
    uint64_t asked; /* since when the array has been asked; 0 while it is not */
};

struct soapServiceCounts {
    uint32_t state;
    char path[kSoapPathBytes];
    uint64_t refused[kSoapRefusals];
    uint64_t lostLogLines;
    uint64_t contextsMade, contextsReused;
    uint64_t arrayAnswered, arrayFailed; /* when it last did, monotonic; 0 for never */
    struct soapOperationCounts operations[kSoapMaxOperations]; /* the first has no name */
    struct soapPlace places[kSoapMaxPlaces];
};

struct soapCounts {
    uint32_t layout;  /* the size of all of it: another release of the module has another */
    uint32_t places;  /* calls that can be at work in one service */
    uint64_t started; /* monotonic */
    struct soapServiceCounts services[kSoapMaxServices];
};

/* A call as its own process sees it. */
struct soapCall {
    struct soapServiceCounts* counts; /* null where nothing is counted */
    struct soapPlace* place;          /* null for one that found none, where none was demanded */
    const char* operation;
    uint32_t operationRow;
    enum SoapOutcome outcome;
    int outcomeIsReported;
    int askedArray;
    uint64_t began, asked, arrayTime;
    uint32_t lostLogLines;
    char cluster[64 + 1];
};

/* Readies the shared memory, at each start and restart, in the parent. */
void soapOpenCounts(server_rec* server);
/* The shared memory, null before it is there. */
struct soapCounts* soapAllCounts(void);
/* The counts of the locations with this path; null where there is no room for more. In the parent,
 * while the server starts. */
struct soapServiceCounts* soapFindCounts(const char* path);
/* In a child that has just been forked. */
void soapBeginProcess(void);
/* A child has ended; gives its places back. In the parent. */
void soapForgetProcess(int32_t pid);

/* Nanoseconds of the monotonic clock. */
uint64_t soapNow(void);
/* Adds one, or more, to a count. */
void soapAdd(uint64_t* count, uint64_t number);

/* True when `limit` calls are at work (0 for no limit). */
int soapIsFull(const struct soapServiceCounts* counts, unsigned limit);
/* Begins a call. False when `limit` calls are at work. */
int soapBeginCall(struct soapCall* call, struct soapServiceCounts* counts, unsigned limit);
/* What soapRequestReport.h tells of a call. */
void soapNoteOperation(struct soapCall* call, const char* name);
void soapNoteArray(struct soapCall* call, int begins);
/* Ends a call whose reply has this HTTP status, 0 for none; counts it and gives its place back. */
void soapEndCall(struct soapCall* call, int status);
