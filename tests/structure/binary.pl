#!/usr/bin/perl
# Checks the file that is shipped, by its own bytes: binary.pl MODULE VERSION PLACES...
# PLACES are texts of this machine that must not stand in it: the folders of sources and build.
use strict;
use warnings;

my ($path, $version, @places) = @ARGV;
die "usage: see the head of $0\n" unless @places;

use constant {
  SECTION_SIZE => 40, PAGE => 4096, EXPORTS => 0, IMPORTS => 1, EXECUTABLE => 0x20000000, WRITABLE => 0x80000000,
  HIGH_ENTROPY_VA => 0x20, DYNAMIC_BASE => 0x40, NX_COMPAT => 0x100,
};
my %expected_exports = (DllCanUnloadNow => 1, DllGetClassObject => 2, DllRegisterServer => 3, DllUnregisterServer => 4,
                        FileOpen => 5);
my %platform = map { $_ => 1 } qw(advapi32.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll user32.dll);

open my $file, '<:raw', $path or die "$path: $!\n";
my $data = do { local $/; <$file> };

my $bad = 0;
sub complain { print "$_[0]\n"; $bad = 1 }
sub word { unpack 'v', substr $data, $_[0], 2 }
sub long { unpack 'V', substr $data, $_[0], 4 }

my $header = long(0x3C);
die "$path: not a 64-bit module\n" unless substr($data, $header, 4) eq "PE\0\0" && word($header + 24) == 0x20B;
my $optional = $header + 24;
my @sections = map { my $at = $optional + word($header + 20) + $_ * SECTION_SIZE;
                     { name => unpack('Z8', substr $data, $at, 8), size => long($at + 8), address => long($at + 12),
                       offset => long($at + 20), flags => long($at + 36) } } 0 .. word($header + 6) - 1;

sub place {
  my ($address) = @_;
  for my $section (@sections) {
    my $into = $address - $section->{address};
    return $section->{offset} + $into if $into >= 0 && $into < $section->{size};
  }
  die sprintf "%s: the address %x is in no section\n", $path, $address;
}
sub text_at { unpack 'Z*', substr $data, place($_[0]), 256 }
sub directory { place(long($optional + 112 + 8 * $_[0])) }

# The same wherever and whenever it was built.
complain("the header has the time of the build") if long($header + 8) != 0;
complain("the export table has the time of the build") if long(directory(EXPORTS) + 4) != 0;
while ($data =~ /Created by WIDL version \S+ at ([^\n]*)\n/g) {
  complain("the type library has the time of the build: $1") if $1 ne 'Thu Jan  1 00:00:00 1970';
}
for my $place (@places) {
  for my $form ($place, $place =~ tr{/}{\\}r) {
    my $wide = join '', map { "$_\0" } split //, $form;
    complain("'$form' stands in the module") if index($data, $form) >= 0 || index($data, $wide) >= 0;
  }
}

my $wanted = HIGH_ENTROPY_VA | DYNAMIC_BASE | NX_COMPAT;
complain("a flag of the header is missing") if (word($optional + 70) & $wanted) != $wanted;
for my $section (@sections) {
  complain("the section $section->{name} cannot be mapped from the file") if $section->{offset} % PAGE != 0;
  next unless $section->{flags} & WRITABLE && $section->{flags} & EXECUTABLE;
  complain("the section $section->{name} is writable and executable");
}

my $table = directory(EXPORTS);
my ($base, $functions, $names) = map { long($table + $_) } 16, 20, 24;
my ($name_list, $ordinal_list) = map { place(long($table + $_)) } 32, 36;
my %exports = map { text_at(long($name_list + 4 * $_)) => $base + word($ordinal_list + 2 * $_) } 0 .. $names - 1;
complain("$functions functions are exported") if $functions != keys %expected_exports;
complain("exported: $_ $exports{$_}") for grep { ($expected_exports{$_} // 0) != $exports{$_} } sort keys %exports;
complain("not exported: $_") for grep { !exists $exports{$_} } sort keys %expected_exports;

for (my $entry = directory(IMPORTS); long($entry + 12) != 0; $entry += 20) {
  my $library = text_at(long($entry + 12));
  complain("the module imports $library") unless $platform{lc $library};
  # The others are there before the module is.
  complain("$library has to be looked for without regard to case") if lc $library eq 'oleaut32.dll' && lc $library ne $library;
}

my $fixed = index $data, pack('V', 0xFEEF04BD);
die "$path: no version\n" if $fixed < 0;
my $stated = join '.', map { word($fixed + $_) } 10, 8, 14;
complain("the version is $stated, that of the project $version") if $stated ne $version;
for my $field (qw(ProductName CompanyName LegalCopyright OriginalFilename)) {
  my $wide = join '', map { "$_\0" } split //, $field;
  complain("the version resource does not state $field") unless $data =~ /\Q$wide\E(?:\0\0)+[^\0]/;
}
exit $bad;
