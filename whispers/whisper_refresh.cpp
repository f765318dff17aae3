#include "whispers/whisper_refresh.h"

#include "views/formatted_text.h"
#include "whispers/whisper_dictionary.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMaxPickedUnits = 250;

WhisperPlan Just(WhisperStep step) { return {step, 0, {}}; }

}  // namespace

// The start is counted back from the end of the field, so formatting codes in front of
// the word are skipped; codes inside the word shift it, as they always have.
std::optional<TypedWord> WordBeforeCaret(QStringView fieldText, qsizetype selectionEnd) {
  if (fieldText.isEmpty()) return std::nullopt;
  const QString stripped = StripFormatting(fieldText);
  const qsizetype index = stripped.lastIndexOf(u' ') + 1;
  const qsizetype start = fieldText.size() - stripped.size() + index;
  if (index == stripped.size() || start > selectionEnd) return std::nullopt;
  return TypedWord{stripped.sliced(index), start};
}

WhisperPlan PlanWhisperRefresh(WhisperDictionary& dictionary, QStringView fieldText,
                               qsizetype selectionEnd, int limit, const QStringList& nicks) {
  const std::optional<TypedWord> typed = WordBeforeCaret(fieldText, selectionEnd);
  if (!typed) return Just(WhisperStep::Close);
  WhisperCompletions found = dictionary.FindCompletions(typed->word, limit);
  if (found.result == WhisperLookup::Unavailable && nicks.isEmpty()) return Just(WhisperStep::Keep);
  if (found.result == WhisperLookup::NotFound && nicks.isEmpty()) return Just(WhisperStep::Close);
  WhisperPlan plan{WhisperStep::Show, typed->start, {}};
  for (QString& word : found.words) plan.rows.append({std::move(word), false});
  for (const QString& nick : nicks) plan.rows.append({nick, true});
  if (plan.rows.isEmpty()) plan.step = WhisperStep::Close;
  return plan;
}

QString TextAfterPick(QStringView fieldText, qsizetype wordStart, const WhisperRow& row) {
  const QString suffix = row.nick && wordStart == 0 ? u": "_s : u" "_s;
  QString text = fieldText.first(std::clamp<qsizetype>(wordStart, 0, fieldText.size())).toString();
  return text.append(QStringView(row.text).left(kMaxPickedUnits)).append(suffix);
}
