#include "report/Messages.h"

namespace orv {

std::string TextOf(const Message& message) {
  const std::string text(message.text);
  return message.beginning ? platform::ResourceString(message.beginning) + text : text;
}

Finding FillIn(const Message& message, const std::vector<std::string>& arguments) {
  Finding finding{message.code, message.severity, "", {}};
  const std::string text = TextOf(message);
  std::string_view rest = text;
  for (const std::string& argument : arguments) {
    const MessagePlace place = TakePlace(rest);
    finding.text.append(place.before).append(place.isShown ? argument : "");
    if (const auto kind = SubjectNamed(place.name)) finding.subjects.push_back({*kind, argument});
  }
  finding.text.append(TakePlace(rest).before);
  if (finding.text.size() > kMaxMessageText) finding.text.resize(kMaxMessageText);
  return finding;
}

}  // namespace orv
