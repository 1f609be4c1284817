#!/usr/bin/perl
# Makes a ZIP archive of the files that its input names, all with the same time: archive.pl OUTPUT.zip < NAMES
use strict;
use warnings;
use IO::Compress::Zip qw($ZipError);

die "usage: see the head of $0\n" unless @ARGV == 1;
# The first of January 2020.
my %every = (Time => 1577836800, Minimal => 1, Efs => 1, Level => 6, Stream => 0);
my $archive;
while (my $name = <STDIN>) {
  chomp $name;
  if ($archive) {
    $archive->newStream(Name => $name, %every) or die "$name: $ZipError\n";
  } else {
    $archive = IO::Compress::Zip->new($ARGV[0], Name => $name, %every) or die "$ARGV[0]: $ZipError\n";
  }
  open my $file, '<:raw', $name or die "$name: $!\n";
  local $/;
  $archive->print(scalar <$file> // '') or die "$name: $ZipError\n";
}
die "no files\n" unless $archive;
$archive->close or die "$ARGV[0]: $ZipError\n";
