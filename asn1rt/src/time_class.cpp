// time_class.cpp: ASN1CTime, the fields of a bound UTCTime or
// GeneralizedTime text.
#include <korvex/asn1rt/ASN1CTime.h>
#include <string.h>

#include "time_text.h"

using Korvex::rt::CheckTimeFields;
using Korvex::rt::DaysInMonth;
using Korvex::rt::FormatTimeText;
using Korvex::rt::kMaxTimeTextLength;
using Korvex::rt::ParseTimeText;
using Korvex::rt::ShiftToUTC;
using Korvex::rt::TimeKind;
using Korvex::rt::YearRange;

namespace {

constexpr unsigned int kYearSet = 1;
constexpr unsigned int kMonthSet = 2;
constexpr unsigned int kDaySet = 4;
constexpr unsigned int kDateSet = kYearSet | kMonthSet | kDaySet;
constexpr int kMaxOffsetMinutes = 23 * 60 + 59;

TimeKind KindOf(bool utcTime) { return utcTime ? TimeKind::kUTCTime : TimeKind::kGeneralizedTime; }

}  // namespace

ASN1CTime::ASN1CTime(bool utcTime, ASN1MessageBufferIF& buffer, const char*& text, bool useDerRules)
    : ASN1CType(buffer), mUTCTime(utcTime), mDer(useDerRules), mpText(&text) {}

ASN1CTime::ASN1CTime(bool utcTime, ASN1MessageBufferIF& buffer, bool useDerRules)
    : ASN1CType(buffer), mUTCTime(utcTime), mDer(useDerRules), mpText(&mOwnText) {}

ASN1CTime::ASN1CTime(bool utcTime, ASN1Context* context, const char*& text, bool useDerRules)
    : ASN1CType(context), mUTCTime(utcTime), mDer(useDerRules), mpText(&text) {}

ASN1CTime::ASN1CTime(bool utcTime, bool useDerRules)
    : ASN1CType(), mUTCTime(utcTime), mDer(useDerRules), mpText(&mOwnText) {}

// The text this object wrote stays in the context heap: a record may still
// point at it.
ASN1CTime::~ASN1CTime() {}

int ASN1CTime::refresh() {
  const char* current = *mpText;
  if (current == mpReadText || current == nullptr) return 0;
  ASN1TimeFields parsed;
  int status = ParseTimeText(KindOf(mUTCTime), mDer, current, strlen(current), &parsed);
  if (status != 0) return status;
  mFields = parsed;
  mSetMask = kDateSet;
  mpReadText = current;
  return 0;
}

// field reads the bound text first, then the field: the value must not be
// taken before the text is read.
int ASN1CTime::field(int ASN1TimeFields::*member, unsigned int mask) {
  int status = refresh();
  if (status != 0) return status;
  if ((mSetMask & mask) != mask) return ASN_E_INVDATETIME;
  return mFields.*member;
}

int ASN1CTime::getYear() { return field(&ASN1TimeFields::year, kYearSet); }
int ASN1CTime::getMonth() { return field(&ASN1TimeFields::month, kMonthSet); }
int ASN1CTime::getDay() { return field(&ASN1TimeFields::day, kDaySet); }
int ASN1CTime::getHour() { return field(&ASN1TimeFields::hour, 0); }
int ASN1CTime::getMinute() { return field(&ASN1TimeFields::minute, 0); }
int ASN1CTime::getSecond() { return field(&ASN1TimeFields::second, 0); }

int ASN1CTime::getFraction(int precision) {
  int status = refresh();
  if (status != 0) return status;
  if (precision < 0 || precision > 9) return ASN_E_INVPARAM;
  int value = 0;
  for (int i = 0; i < precision; ++i) {
    value = value * 10 + (i < mFields.fractionDigits ? mFields.fraction[i] - '0' : 0);
  }
  return value;
}

int ASN1CTime::getDiff() {
  int status = refresh();
  if (status != 0) return status;
  return mFields.zone == ASN1TimeFields::kOffset ? mFields.offsetMinutes : 0;
}

// The offset can be negative, so these cannot report a failure apart from a
// value: unreadable text gives 0.
int ASN1CTime::getDiffHour() {
  if (refresh() != 0 || mFields.zone != ASN1TimeFields::kOffset) return 0;
  return mFields.offsetMinutes / 60;
}

int ASN1CTime::getDiffMinute() {
  if (refresh() != 0 || mFields.zone != ASN1TimeFields::kOffset) return 0;
  return mFields.offsetMinutes % 60;
}

bool ASN1CTime::isUTC() { return refresh() == 0 && mFields.zone == ASN1TimeFields::kUTC; }
bool ASN1CTime::isLocal() { return refresh() == 0 && mFields.zone == ASN1TimeFields::kLocal; }

int ASN1CTime::checkPartial(ASN1TimeFields const& f, unsigned int setMask) const {
  TimeKind kind = KindOf(mUTCTime);
  if (setMask == kDateSet) return CheckTimeFields(kind, f);
  int low, high;
  YearRange(kind, &low, &high);
  if ((setMask & kYearSet) && (f.year < low || f.year > high)) return ASN_E_INVDATETIME;
  if ((setMask & kMonthSet) && (f.month < 1 || f.month > 12)) return ASN_E_INVDATETIME;
  if (setMask & kDaySet) {
    // Without a year, 29 February stays possible; without a month, day 31.
    int days =
        DaysInMonth((setMask & kYearSet) ? f.year : 2000, (setMask & kMonthSet) ? f.month : 1);
    if (f.day < 1 || f.day > days) return ASN_E_INVDATETIME;
  }
  // The rest is checked as a whole on a complete date that no check refuses.
  ASN1TimeFields probe = f;
  probe.year = low;
  probe.month = 1;
  probe.day = 1;
  return CheckTimeFields(kind, probe);
}

int ASN1CTime::format(char* out) {
  if (mSetMask != kDateSet || CheckTimeFields(KindOf(mUTCTime), mFields) != 0) {
    return ASN_E_INVDATETIME;
  }
  return FormatTimeText(KindOf(mUTCTime), mDer, mFields, out);
}

int ASN1CTime::commit(ASN1TimeFields const& fields, unsigned int setMask) {
  int status = checkPartial(fields, setMask);
  if (status != 0) return status;
  if (setMask == kDateSet) {
    char text[kMaxTimeTextLength + 1];
    int length = FormatTimeText(KindOf(mUTCTime), mDer, fields, text);
    if (length < 0) return length;
    ASN1CTXT* ctxt = getCtxtPtr();
    char* written = static_cast<char*>(rtMemAlloc(ctxt, static_cast<size_t>(length) + 1));
    if (written == nullptr) return ASN_E_NOMEM;
    memcpy(written, text, static_cast<size_t>(length) + 1);
    // Our previous text is freed only while nothing else points at it and
    // it belongs to the heap the context uses now (a buffer's heap may have
    // replaced it since).
    if (mpWrittenText != nullptr && *mpText == mpWrittenText &&
        mpWrittenHeap == ctxt->pTypeMemHeap) {
      rtMemFreePtr(ctxt, mpWrittenText);
    }
    mpWrittenText = written;
    mpWrittenHeap = ctxt->pTypeMemHeap;
    *mpText = written;
  }
  mpReadText = *mpText;  // from now on the fields are the truth
  mFields = fields;
  mSetMask = setMask;
  return 0;
}

int ASN1CTime::setField(int ASN1TimeFields::*member, int value, unsigned int setBit) {
  refresh();  // an unreadable text is simply replaced
  ASN1TimeFields f = mFields;
  f.*member = value;
  return commit(f, mSetMask | setBit);
}

int ASN1CTime::setYear(int year) { return setField(&ASN1TimeFields::year, year, kYearSet); }
int ASN1CTime::setMonth(int month) { return setField(&ASN1TimeFields::month, month, kMonthSet); }
int ASN1CTime::setDay(int day) { return setField(&ASN1TimeFields::day, day, kDaySet); }
int ASN1CTime::setHour(int hour) { return setField(&ASN1TimeFields::hour, hour, 0); }
int ASN1CTime::setMinute(int minute) { return setField(&ASN1TimeFields::minute, minute, 0); }
int ASN1CTime::setSecond(int second) { return setField(&ASN1TimeFields::second, second, 0); }

int ASN1CTime::setFraction(int value, int precision) {
  refresh();
  if (precision < 0 || precision > 9 || value < 0) return ASN_E_INVDATETIME;
  int limit = 1;
  for (int i = 0; i < precision; ++i) limit *= 10;
  if (value >= limit) return ASN_E_INVDATETIME;
  ASN1TimeFields f = mFields;
  for (int i = precision; i-- > 0; value /= 10) f.fraction[i] = static_cast<char>('0' + value % 10);
  f.fractionDigits = precision;
  while (f.fractionDigits > 0 && f.fraction[f.fractionDigits - 1] == '0') --f.fractionDigits;
  return commit(f, mSetMask);  // UTCTime refuses any fraction but zero
}

int ASN1CTime::setZone(ASN1TimeFields::Zone zone, int offsetMinutes) {
  ASN1TimeFields f = mFields;
  f.zone = zone;
  f.offsetMinutes = offsetMinutes;
  return commit(f, mSetMask);
}

int ASN1CTime::setUTC() {
  refresh();
  return setZone(ASN1TimeFields::kUTC, 0);
}

int ASN1CTime::setLocal() {
  refresh();
  if (mDer) return ASN_E_INVDATETIME;  // X.690 11.7.1: DER times are UTC
  return setZone(ASN1TimeFields::kLocal, 0);
}

int ASN1CTime::setDiff(int minutes) {
  refresh();
  if (minutes < -kMaxOffsetMinutes || minutes > kMaxOffsetMinutes) return ASN_E_INVDATETIME;
  return setZone(ASN1TimeFields::kOffset, minutes);
}

int ASN1CTime::setDiff(int hours, int minutes) {
  if (hours < -23 || hours > 23 || minutes < 0 || minutes > 59) return ASN_E_INVDATETIME;
  return setDiff(hours * 60 + (hours < 0 ? -minutes : minutes));
}

int ASN1CTime::toUTC() {
  int status = refresh();
  if (status != 0) return status;
  if (mSetMask != kDateSet) return ASN_E_INVDATETIME;
  ASN1TimeFields f = mFields;
  status = ShiftToUTC(KindOf(mUTCTime), &f);
  if (status != 0) return status;
  return commit(f, mSetMask);
}

int ASN1CTime::parseString(const char* text) {
  if (text == nullptr) return ASN_E_INVPARAM;
  ASN1TimeFields parsed;
  int status = ParseTimeText(KindOf(mUTCTime), mDer, text, strlen(text), &parsed);
  if (status != 0) return status;
  mFields = parsed;
  mSetMask = kDateSet;
  mpReadText = *mpText;
  return 0;
}

void ASN1CTime::clear() {
  mFields = ASN1TimeFields();
  mSetMask = 0;
  mpReadText = *mpText;
}

size_t ASN1CTime::getTimeStringLen() {
  char text[kMaxTimeTextLength + 1];
  if (refresh() != 0) return 0;
  int length = format(text);
  return length < 0 ? 0 : static_cast<size_t>(length);
}

const char* ASN1CTime::getTimeString(char* buf, size_t bufSize) {
  char text[kMaxTimeTextLength + 1];
  if (buf == nullptr || refresh() != 0) return nullptr;
  int length = format(text);
  if (length < 0 || bufSize <= static_cast<size_t>(length)) return nullptr;
  memcpy(buf, text, static_cast<size_t>(length) + 1);
  return buf;
}

int ASN1CTime::EncodeTo(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int status = buffer.init();
  if (status != 0) return status;
  ASN1CTXT* ctxt = buffer.getCtxtPtr();
  if (*mpText == nullptr) return LOG_ASN1ERR(ctxt, ASN_E_BADVALUE);
  status = refresh();
  if (status != 0) return LOG_ASN1ERR(ctxt, status);
  ASN1TAG tag = TM_UNIV | (mUTCTime ? ASN_ID_UTCTime : ASN_ID_GeneralTime);
  return xe_charstr(ctxt, *mpText, ASN1EXPL, tag);
}

int ASN1CTime::DecodeFrom(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int status = buffer.init();
  if (status != 0) return status;
  ASN1CTXT* ctxt = buffer.getCtxtPtr();
  ASN1TAG tag = TM_UNIV | (mUTCTime ? ASN_ID_UTCTime : ASN_ID_GeneralTime);
  const char* text = nullptr;
  status = xd_charstr(ctxt, &text, ASN1EXPL, tag, 0);
  if (status != 0) return status;
  *mpText = text;
  status = refresh();
  if (status != 0) return LOG_ASN1ERR(ctxt, status);
  return 0;
}

ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& buffer, const char*& text, bool useDerRules)
    : ASN1CTime(true, buffer, text, useDerRules) {}
ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& buffer, bool useDerRules)
    : ASN1CTime(true, buffer, useDerRules) {}
ASN1CUTCTime::ASN1CUTCTime(ASN1Context* context, const char*& text, bool useDerRules)
    : ASN1CTime(true, context, text, useDerRules) {}
ASN1CUTCTime::ASN1CUTCTime(bool useDerRules) : ASN1CTime(true, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, const char*& text,
                                           bool useDerRules)
    : ASN1CTime(false, buffer, text, useDerRules) {}
ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, bool useDerRules)
    : ASN1CTime(false, buffer, useDerRules) {}
ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1Context* context, const char*& text,
                                           bool useDerRules)
    : ASN1CTime(false, context, text, useDerRules) {}
ASN1CGeneralizedTime::ASN1CGeneralizedTime(bool useDerRules) : ASN1CTime(false, useDerRules) {}
