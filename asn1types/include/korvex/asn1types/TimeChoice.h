// korvex/asn1types/TimeChoice.h: the X.509 Time CHOICE (RFC 5280 4.1.2.5) as a
// typed value, and the rendering of a CDateTime through the runtime's time
// classes.
//
//   Time ::= CHOICE { utcTime UTCTime,            -- alternative 1
//                     generalTime GeneralizedTime }  -- alternative 2
//
// The alternative follows the time: a year below 2050 is held as utcTime, 2050
// and later as generalTime (RFC 5280 4.1.2.5). Every path that stores a time
// applies this rule, decoding included, so a GeneralizedTime of 2030 read from
// the wire comes back as utcTime and is written again as UTCTime.
// Conversion to and from asn1data::ASN1T_Time is TimeChoiceTraits.h.
#ifndef KORVEX_ASN1TYPES_TIMECHOICE_H
#define KORVEX_ASN1TYPES_TIMECHOICE_H

#include <korvex/asn1rt/ASN1CTime.h>
#include <korvex/asn1types/Choice.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

#include <memory>
#include <string>

namespace Korvex {
namespace ASN1 {

// CTimeChoiceImpl: the CHOICE holder of CTimeChoice: 1 -> CDateTime (utcTime),
// 2 -> CDateTime (generalTime), any other number -> no alternative.
class KORVEX_API CTimeChoiceImpl : public Choice {
 public:
  enum { utcTime = 1, generalTime = 2 };
  CTimeChoiceImpl();
  CTimeChoiceImpl(CTimeChoiceImpl const& other);
  CTimeChoiceImpl& operator=(CTimeChoiceImpl const& other);
  ~CTimeChoiceImpl() override;
  ChoiceValueTraits const* findTraits(unsigned int n) const override;
};

// CTimeChoice: a point in time with its Time alternative.
class KORVEX_API CTimeChoice {
 public:
  // CTimeChoice(): CDateTime(0, 0) (1970-01-01T00:00:00Z) as utcTime.
  CTimeChoice();
  // CTimeChoice(t): t, with the alternative of its year.
  explicit CTimeChoice(CDateTime const& t);
  CTimeChoice(CTimeChoice const& other);
  CTimeChoice& operator=(CTimeChoice const& other);
  ~CTimeChoice();

  // get_type: the selected alternative (1 utcTime, 2 generalTime; 0 for a
  // cleared value).
  unsigned int get_type() const;
  // get_time: the held time when alternative 1 or 2 is selected, else null.
  // The pointer lives until the value changes.
  CDateTime const* get_time() const;
  // put_time: replaces the time and selects the alternative of its year. On a
  // cleared value it makes a new holder first.
  void put_time(CDateTime const& t);
  // clear: destroys the holder and the time in it. The value is then empty:
  // get_type() is 0, get_time() null, encode() throws 0x80093101; assigning,
  // put_time or decode make it whole again. Clearing twice is harmless.
  void clear();

  // encode: the DER of the Time (UTCTime or GeneralizedTime text in DER form,
  // whole seconds). A time that the alternative's text cannot hold (utcTime
  // before 1950, generalTime after 9999) throws 0x80093101.
  CBlob encode() const;
  // decode: replaces the value with the time of a DER/BER Time, the
  // alternative chosen again by the year. Failure throws 0x80093101 and
  // leaves the value as it was.
  void decode(CBlob const& der);

 private:
  std::unique_ptr<CTimeChoiceImpl> m_impl;
};

// Equal when both select the same alternative and hold equal times (two
// cleared values are equal).
KORVEX_API bool operator==(CTimeChoice const& left, CTimeChoice const& right);
KORVEX_API bool operator!=(CTimeChoice const& left, CTimeChoice const& right);

// GetASN1CTimeString returns the text that timeObject (an ASN1CUTCTime or an
// ASN1CGeneralizedTime) makes of t: the object is cleared, then year, month,
// day, hour, minute and second are set from t in that order (milliseconds are
// not passed). A setter that reports an error (a year outside the object's
// range), or an object that then makes no text, throws 0x80093101. The text
// is also left in the object's context, as its setters wrote it.
KORVEX_API std::string GetASN1CTimeString(CDateTime const& t, ASN1CTime& timeObject);

}  // namespace ASN1
}  // namespace Korvex

#endif
