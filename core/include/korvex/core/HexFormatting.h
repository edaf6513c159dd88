// korvex/core/HexFormatting.h: human-readable hex dumps of byte blobs.
#ifndef KORVEX_CORE_HEXFORMATTING_H
#define KORVEX_CORE_HEXFORMATTING_H

#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlstr.h>
#include <korvex/platform/export.h>

// IsPrintForHex tells whether the byte is shown as itself in a hex dump:
// true exactly for the visible ASCII characters 0x21..0x7E (not the space).
KORVEX_API bool IsPrintForHex(unsigned char c);

// GetFormattedHexString returns a hex dump of data, eight bytes a line: the
// bytes as upper-case hex pairs separated by single spaces, then three
// spaces, then each byte as itself when IsPrintForHex accepts it or ".",
// then "\n". A short last line is padded with two spaces (not three) per
// missing byte, so its character column starts further left. An empty blob
// gives an empty string. Memory exhaustion throws
// ATL::CAtlException(E_OUTOFMEMORY); a dump longer than the string class's
// int length limit (blobs of about 490 MB and more) throws E_INVALIDARG.
KORVEX_API ATL::CStringT<char> GetFormattedHexString(Korvex::CBlob data);

#endif
