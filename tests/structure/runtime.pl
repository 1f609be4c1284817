#!/usr/bin/perl
# Checks that the module links nothing of the C++ runtime's machinery of exceptions, streams and locales, and that no
# constructor of its own runs when it is loaded: runtime.pl MAP
use strict;
use warnings;

die "usage: see the head of $0\n" unless @ARGV == 1;
open my $map, '<', $ARGV[0] or die "$ARGV[0]: $!\n";
my ($linked, $bad) = (0, 0);
while (<$map>) {
  $linked++ if /DllGetClassObject/;
  # That of the toolchain ends the list.
  print and $bad++ if /^ \.(?:ctors|init_array)\S*\s+0x\S+\s+0x[1-9a-f]\S*\s/ && !/crtend\.o$/;
  print and $bad++ if /__cxa_allocate_exception|__cxa_throw|__verbose_terminate_handler|ios_base|std::locale/;
}
die "$ARGV[0]: not the map of the module\n" unless $linked;
exit($bad ? 1 : 0);
