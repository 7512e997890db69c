/*
 * What a plug-in tells the module about the request that it serves, for the access log and the
 * counters of the status page.
 *
 * The module hangs it on the context under the name below, beside the request configuration:
 *
 *     const struct soapRequestReport* report = context->fplugin(context, SOAP_REQUEST_REPORT_ID);
 *     if (report)
 *         report->operation("Ping");
 *
 * Another module of the same interface does not register it, and the plug-in then reports nothing.
 * The functions belong to the module. They are called on the thread that serves the request, while
 * the serve function runs; at any other time they do nothing. None of them fails.
 */
#pragma once

#include <stdint.h>

#define SOAP_REQUEST_REPORT_ID "mod_gsoap request report 1"

/* How a call ended, where its reply alone does not show it. */
enum SoapReportedEnd {
    SOAP_REFUSED_BY_ARRAY = 1, /* the array answered that it will not */
    SOAP_NO_ANSWER = 2         /* the array gave no answer that can be used */
};

struct soapRequestReport {
    uint32_t length; /* of this struct in bytes; a later module can have more behind it */

    /* Which operation runs. The name is not copied and has to live as long as the process; a text
     * of the client must never be given, since each name takes a row of the counters. */
    void (*operation)(const char* name);

    /* For which cluster; any text of the client, which is copied, cut and made one safe line. */
    void (*cluster)(const char* id);

    /* The array is asked now (1), and has answered or failed (0). */
    void (*asksArray)(int begins);

    /* Left out, a reply that is no fault counts as answered and a fault as the service's refusal.
     */
    void (*ended)(enum SoapReportedEnd end);

    /* This many more lines could not be written to the system log. */
    void (*lostLogLines)(uint32_t count);
};
