// korvex/asn1rt/ASN1CTime.h: UTCTime and GeneralizedTime text seen as date
// and time fields.
//
// A time object is bound to a text pointer (a record's time field, or a slot
// of its own) and reads its fields from that text when the pointer changes.
// Setters change one field and, once year, month and day are all known,
// write the whole text anew into the type heap of the object's context and
// point the bound pointer at it (the object's earlier text is freed then;
// text it did not write is never freed or written). So a record's time field
// can be edited field by field, and the text lives as long as the context.
//
// Forms (X.680 46 and 47):
//   UTCTime          YYMMDDhhmm[ss](Z | +hhmm | -hhmm)
//   GeneralizedTime  YYYYMMDDhh[mm[ss]][(.|,)f+][Z | +hh[mm] | -hh[mm]]
// UTCTime's two-digit year is 19YY for YY of 50 and above and 20YY below 50
// (RFC 5280 4.1.2.5.1), so it holds the years 1950 to 2049. GeneralizedTime
// holds 0 to 9999, fractions of a second (up to 32 digits; a fraction of an
// hour or minute is read into minutes and seconds) and local times (no zone).
//
// The final constructor argument, useDerRules, chooses DER (X.690 11.7,
// 11.8): only YYMMDDhhmmssZ and YYYYMMDDhhmmss[.f+]Z (no trailing zero in
// the fraction) are read, and text is written in that form, a time with an
// offset being moved to UTC first. Without it every form above is read, and
// text is written with seconds always present, the fraction without
// trailing zeros, and the zone as set (Z, an offset, or none for a local
// GeneralizedTime).
//
// Statuses: -3 text that is not of the form (or not canonical under DER),
// -12 no memory, -18 no text to encode, -31 an invalid date or time value
// (month 13, 30 February, hour 24, a year outside the type's range, a
// fraction for UTCTime, a local UTCTime, a field not set yet).
#ifndef KORVEX_ASN1RT_ASN1CTIME_H
#define KORVEX_ASN1RT_ASN1CTIME_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <stddef.h>

// ASN1TimeFields: the fields of one time value.
struct ASN1TimeFields {
  enum Zone { kUTC = 0, kLocal = 1, kOffset = 2 };
  static constexpr int kMaxFractionDigits = 32;

  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int fractionDigits = 0;                  // digits used in `fraction`
  char fraction[kMaxFractionDigits] = {};  // decimal digits of the fraction of a second
  Zone zone = kUTC;
  int offsetMinutes = 0;  // east of UTC, for kOffset
};

class KORVEX_API ASN1CTime : public ASN1CType {
 public:
  virtual ~ASN1CTime();
  ASN1CTime(const ASN1CTime&) = delete;
  ASN1CTime& operator=(const ASN1CTime&) = delete;

  // Getters read the bound text first when it has changed. They return the
  // field, or -3 / -31 when the text cannot be read, -31 for a year, month or
  // day that is not set.
  int getYear();
  int getMonth();
  int getDay();
  int getHour();
  int getMinute();
  int getSecond();
  // getFraction returns the fraction of a second scaled to `precision`
  // decimal digits (0 to 9), cut off, not rounded: .5 is 500 at precision 3.
  int getFraction(int precision = 3);
  // getDiff: the offset from UTC in minutes (0 for UTC or a local time);
  // getDiffHour / getDiffMinute split it, both with its sign.
  int getDiff();
  int getDiffHour();
  int getDiffMinute();
  // isUTC / isLocal: whether the time is in UTC ("Z") / has no zone.
  bool isUTC();
  bool isLocal();

  // Setters return 0 or -31 (value out of range, or not a valid date with
  // the fields already set), or -12 when the new text cannot be allocated
  // (the field is unchanged then).
  int setYear(int year);
  int setMonth(int month);
  int setDay(int day);
  int setHour(int hour);
  int setMinute(int minute);
  int setSecond(int second);
  // setFraction sets the fraction to value / 10^precision (precision 0 to
  // 9, value below 10^precision); GeneralizedTime only.
  int setFraction(int value, int precision = 3);
  // setUTC makes the time UTC; setLocal makes it a local time (no zone;
  // GeneralizedTime without DER only); setDiff gives it an offset of
  // `minutes` east of UTC (at most 23:59 either way), setDiff(h, m) of h
  // hours and m minutes (the sign of the hours applies to both).
  int setUTC();
  int setLocal();
  int setDiff(int minutes);
  int setDiff(int hours, int minutes);
  // toUTC moves a time with an offset to UTC. 0, or -31 when that leaves the
  // type's year range.
  int toUTC();

  // parseString reads `text` into the fields (the bound text is not
  // changed). 0, -3 or -31; the fields are unchanged on failure.
  int parseString(const char* text);
  // clear forgets every field (year, month and day become unset, the rest
  // zero, the zone UTC); the bound text is left as it is and is no longer
  // read until the bound pointer changes.
  void clear();

  // getTimeStringLen: the length of the text of the current fields without
  // its NUL, 0 when they make no valid time.
  size_t getTimeStringLen();
  // getTimeString writes the text of the current fields into buf (bufSize
  // must hold it and its NUL) and returns buf; null when the fields make no
  // valid time or buf is too small.
  const char* getTimeString(char* buf, size_t bufSize);

  // EncodeTo / DecodeFrom: the bound text as a UTCTime (tag 23) or
  // GeneralizedTime (tag 24) with its tag (X.680 46, 47). EncodeTo
  // returns the encoded length; text that does not read as a time gives -3
  // or -31, no text -18. DecodeFrom points the bound text at the decoded
  // text (in the buffer's heap) and checks that it reads as a time.
  virtual int EncodeTo(ASN1MessageBufferIF& buffer);
  virtual int DecodeFrom(ASN1MessageBufferIF& buffer);

 protected:
  ASN1CTime(bool utcTime, ASN1MessageBufferIF& buffer, const char*& text, bool useDerRules);
  ASN1CTime(bool utcTime, ASN1MessageBufferIF& buffer, bool useDerRules);
  ASN1CTime(bool utcTime, ASN1Context* context, const char*& text, bool useDerRules);
  ASN1CTime(bool utcTime, bool useDerRules);

 private:
  int refresh();
  int field(int ASN1TimeFields::*member, unsigned int mask);
  // setField / setZone: the setters' common step, one field (with its bit
  // of mSetMask) or the zone changed and committed.
  int setField(int ASN1TimeFields::*member, int value, unsigned int setBit);
  int setZone(ASN1TimeFields::Zone zone, int offsetMinutes);
  int commit(ASN1TimeFields const& fields, unsigned int setMask);
  int checkPartial(ASN1TimeFields const& fields, unsigned int setMask) const;
  int format(char* out);

  bool mUTCTime;
  bool mDer;
  const char* mOwnText = nullptr;    // the bound slot when none is given
  const char** mpText;               // the bound text pointer
  const char* mpReadText = nullptr;  // the text the fields were read from (or written to)
  char* mpWrittenText = nullptr;     // the heap text this object wrote last
  void* mpWrittenHeap = nullptr;     // the heap it was taken from
  ASN1TimeFields mFields;
  unsigned int mSetMask = 0;  // which of year, month, day are set
};

// ASN1CUTCTime: a UTCTime. Constructors: bound to `text` and sharing the
// buffer's context; bound to a slot of its own and sharing the buffer's
// context; bound to `text` with the given context (null: a new one); a slot
// and a context of its own.
class KORVEX_API ASN1CUTCTime : public ASN1CTime {
 public:
  ASN1CUTCTime(ASN1MessageBufferIF& buffer, const char*& text, bool useDerRules = true);
  explicit ASN1CUTCTime(ASN1MessageBufferIF& buffer, bool useDerRules = true);
  ASN1CUTCTime(ASN1Context* context, const char*& text, bool useDerRules = true);
  explicit ASN1CUTCTime(bool useDerRules = true);
};

// ASN1CGeneralizedTime: a GeneralizedTime, with the same constructors.
class KORVEX_API ASN1CGeneralizedTime : public ASN1CTime {
 public:
  ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, const char*& text, bool useDerRules = true);
  explicit ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, bool useDerRules = true);
  ASN1CGeneralizedTime(ASN1Context* context, const char*& text, bool useDerRules = true);
  explicit ASN1CGeneralizedTime(bool useDerRules = true);
};

#endif
