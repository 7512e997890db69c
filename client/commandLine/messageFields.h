#pragma once

#include "client/commandLine/fieldOptions.h"

namespace client {

// One overload for each request: the options of its subcommand. `message` must live until it was
// sent.
void declareFields(FieldOptions& options, SanApi::ns1__Ping& message);
void declareFields(FieldOptions& options, SanApi::ns1__AddHccToSan& message);
void declareFields(FieldOptions& options, SanApi::ns1__RemoveHccFromSan& message);
void declareFields(FieldOptions& options, SanApi::ns1__RenameHccInSan& message);
void declareFields(FieldOptions& options, SanApi::ns1__AddServer& message);
void declareFields(FieldOptions& options, SanApi::ns1__RemoveServer& message);
void declareFields(FieldOptions& options, SanApi::ns1__NewPrimaryCfmAddresses& message);
void declareFields(FieldOptions& options, SanApi::ns1__HccAttachVolume& message);
void declareFields(FieldOptions& options, SanApi::ns1__HccDetachVolume& message);
void declareFields(FieldOptions& options, SanApi::ns1__MakeDataAvailable& message);
void declareFields(FieldOptions& options, SanApi::ns1__MakeDataUnavailable& message);
void declareFields(FieldOptions& options, SanApi::ns1__FlushComplete& message);
void declareFields(FieldOptions& options, SanApi::ns1__SnapshotPrepareComplete& message);

}  // namespace client
