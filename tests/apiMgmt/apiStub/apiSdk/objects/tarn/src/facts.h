#pragma once

#include <map>
#include <string>
#include <vector>

/// The rows of facts.txt.
struct AttributeFact {
    std::string xmlName;
    /// The row without blanks around its columns, as describeAttribute writes an attribute.
    std::string row;
    bool listed = true;
};

struct ClassFact {
    std::string name;  // the class's line up to its facts, such as "method TarnServer Get"
    std::string kind;  // its first word
    std::string object;
    std::string method;
    /// What stands behind "then", "after", "async", "privilege" and "requires".
    std::map<std::string, std::vector<std::string>> words;
    std::vector<AttributeFact> attributes;
    /// The rows of its attribute list: its own and its base's.
    std::vector<std::string> listedRows;
};

/// Every class of facts.txt, in its order; lives as long as the process.
const std::vector<ClassFact>& allFacts();

/// What the code has otherwise than facts.txt states, a row a line, with the file to look at; empty
/// when they agree. `name` says whose rows they are.
std::string differenceFromFacts(const std::string& name, const std::vector<std::string>& stated,
                                const std::vector<std::string>& found);

class BASEApiAttribute;
/// An attribute as a row of the facts.
std::string describeAttribute(const BASEApiAttribute& attribute);
