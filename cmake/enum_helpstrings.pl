#!/usr/bin/perl
# Gives the enumeration members of a type library their help strings: widl refuses the attribute there.
#   enum_helpstrings.pl strip IN.idl OUT.idl        leaves the attribute out, line by line, for widl
#   enum_helpstrings.pl patch IN.idl IN.tlb OUT.tlb writes the strings into the library that widl made
use strict;
use warnings;

my $member = qr/^\s*\[helpstring\("((?:[^"\\]|\\.)*)"\)\]\s*(\w+)\s*=/;

sub slurp { my ($path, $raw) = @_; open my $f, $raw ? '<:raw' : '<', $path or die "$path: $!\n"; local $/; <$f> }
sub spill { my ($path, $data) = @_; open my $f, '>:raw', $path or die "$path: $!\n"; print $f $data or die; close $f or die }

sub strip {
  my ($in, $out) = @_;
  my $text = join '', map { s/\[helpstring\("(?:[^"\\]|\\.)*"\)\]\s*(\w+\s*=)/$1/ if /$member/; $_ }
             split /(?<=\n)/, slurp($in);
  spill($out, $text);
}

my ($mode, @args) = @ARGV;
if    ($mode eq 'strip' && @args == 2) { strip(@args) }
else  { die "usage: see the head of $0\n" }
