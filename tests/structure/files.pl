#!/usr/bin/perl
# Checks the files of a tree: none is too long, and each .cpp implements the header of its name: files.pl LINES ROOT
# A class in several units has its header once: class_part.cpp implements class.h.
use strict;
use warnings;
use File::Find qw(find);

my ($most, $root) = @ARGV;
die "usage: see the head of $0\n" unless defined $root;

# Without a header of their own: entry points, which the platform and the engine's contract declare, tests and measurements.
my $stands_alone = qr{/(allocation|exports|identifiers|dll_main|main)\.cpp$|/exports/\w+\.cpp$|/(tests|bench)/};

my ($files, $bad) = (0, 0);
find({ no_chdir => 1, wanted => sub {
  return unless /\.(h|cpp)$/;
  $files++;
  open my $in, '<', $_ or die "$_: $!\n";
  my $lines = () = <$in>;
  print "$_: $lines lines\n" and $bad++ if $lines > $most;
  my ($name) = m{^(.*)\.cpp$} or return;
  return if $_ =~ $stands_alone;
  my $header = $name;
  while (!-e "$header.h") {
    $header =~ s/_[^_\/]+$// or print "$_ implements no header of its name\n" and $bad++ and return;
  }
} }, $root);
die "no sources in $root\n" unless $files;
print "$files files\n";
exit($bad ? 1 : 0);
