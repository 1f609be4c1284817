#!/usr/bin/perl
# Writes the enumerations of an interface definition as a header: enumerations.pl IDL OUT
use strict;
use warnings;

die "usage: see the head of $0\n" unless @ARGV == 2;
open my $in, '<', $ARGV[0] or die "$ARGV[0]: $!\n";
my $definition = do { local $/; <$in> };
my @enumerations = $definition =~ /^\s*typedef\s*\[[^]]*\]\s*(enum\b.*?;)/gms or die "$ARGV[0]: no enumerations\n";
s/\[helpstring\("(?:[^"\\]|\\.)*"\)\]//g for @enumerations;

open my $out, '>', $ARGV[1] or die "$ARGV[1]: $!\n";
print $out "#pragma once\n", map { "typedef $_\n" } @enumerations;
close $out or die "$ARGV[1]: $!\n";
