#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "archive/catalogue/catalogue.h"

namespace catalogue_testing {

struct GoldenField {
  std::string type;
  std::string name;
  std::string text;  // of its value, before escaping
};

// A line of wire_texts.jsonl.
struct GoldenMessage {
  std::string className;
  int id = 0;
  std::string wireName;
  std::vector<GoldenField> fields;
  std::string untouched;  // the text of a new object
  std::string filled;     // the text of an object with the values
};

inline void PrintTo(const GoldenMessage& message, std::ostream* out) {
  *out << message.className;
}

// All of them, read from the file once. Ends the program when the file cannot be read.
const std::vector<GoldenMessage>& GoldenMessages();
const GoldenMessage& Golden(const std::string& className);

// The value that a field's text stands for, by this program's own conversion.
Cmm::Archive::MessageFieldValue ValueOf(const GoldenField& field);

// Gives the fields of `message` the values of `golden`.
void Fill(Cmm::Archive::CatalogueMessage& message, const GoldenMessage& golden);

}  // namespace catalogue_testing
