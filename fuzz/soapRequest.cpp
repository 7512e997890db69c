// Any bytes as the body of a request: the service answers with a document that clients can read,
// or with nothing.
#include "fuzz/serviceAnswer.h"

void drive(std::string_view bytes) {
    serviceAnswer(std::string(bytes));
}
